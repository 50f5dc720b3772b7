// The choice of a wavelet and of what happens at the ends of the data.
//
//   const choice = waveletChoice({ onChange(changes), announce, boundary: true });
//   choice.element
//   choice.show(state)         takes the shared keys of a panel's state: wavelet and boundary
//   choice.wavelet()           the record of wavelets.js: { name, function, arguments, taps, moments,
//                              symmetric, boundaries, pywavelets, aliases }
//   choice.boundary()          'periodic', 'symmetric' or 'interval'
//
// `onChange` gets { wavelet, boundary }, to be given to services.state.set. A wavelet that the chosen boundary
// does not take brings the periodic one back, and says so. transformOf('wpt', 'interval') is 'wpti'.

import { group, make, select } from './controls.js';
import { wavelets } from './wavelets.js';

export const FAMILIES = [
  ['daublet', 'Daubechies, extremal phase'],
  ['symmlet', 'Daubechies, least asymmetric (symmlets)'],
  ['coiflet', 'Coiflets'],
  ['Bspline', 'Biorthogonal splines'],
  ['bl', 'Orthonormal splines (Battle-Lemarié)'],
];

export const BOUNDARIES = [
  ['periodic', 'periodic'],
  ['symmetric', 'symmetric (mirrored)'],
  ['interval', 'interval'],
];

const LETTERS = { periodic: '', symmetric: 's', interval: 'i' };

export const transformOf = (stem, boundary) => stem + LETTERS[boundary];

export const waveletOf = (name) => wavelets.find((each) => [each.name, ...each.aliases].includes(name)) ?? null;

const ofFamily = (family) => wavelets.filter((each) => each.function === family);

function orderText(wavelet) {
  const [first, second] = wavelet.arguments;
  if (wavelet.function === 'Bspline') return `orders ${first} and ${second}`;
  if (wavelet.function === 'bl') return `degree ${first}`;
  return first === 2 ? '2 taps (Haar)' : `${first} taps`;
}

export const titleOf = (wavelet) =>
  `${FAMILIES.find(([id]) => id === wavelet.function)[1].replace(/ \(.*/, '')}, ${orderText(wavelet)}`;

export function waveletChoice({ onChange, announce, boundary: withBoundary = true }) {
  let wavelet = wavelets[0];
  let boundary = 'periodic';
  const note = make('p', { class: 'hint', hidden: true });

  const family = select({
    label: 'Family',
    options: FAMILIES.map(([value, text]) => ({ value, text })),
    value: wavelet.function,
    onChange: (value) => choose(nearest(ofFamily(value))),
  });
  const order = select({
    label: 'Order',
    options: [],
    value: '',
    onChange: (name) => choose(waveletOf(name)),
  });
  const ends = select({
    label: 'Ends of the data',
    options: [],
    value: boundary,
    onChange: (value) => {
      boundary = value;
      tell('');
      onChange({ wavelet: wavelet.name, boundary });
    },
  });

  // Another family opens with what is nearest in length to the wavelet before.
  const nearest = (candidates) => {
    const distance = ({ taps }) => Math.abs(taps[0] - wavelet.taps[0]);
    return candidates.reduce((best, each) => (distance(each) < distance(best) ? each : best));
  };

  function tell(text) {
    note.textContent = text;
    note.hidden = !text;
    if (text) announce(text);
  }

  function draw() {
    const options = ofFamily(wavelet.function).map((each) => ({ value: each.name, text: orderText(each) }));
    family.value = wavelet.function;
    order.setOptions(options, wavelet.name);
    const boundaries = BOUNDARIES.map(([value, text]) => ({
      value,
      text,
      disabled: !wavelet.boundaries.includes(value),
    }));
    ends.setOptions(boundaries, boundary);
  }

  // A boundary that the wavelet does not take becomes the periodic one, which all take.
  function settle(wanted) {
    const taken = !withBoundary || wavelet.boundaries.includes(wanted);
    boundary = taken ? wanted : 'periodic';
    tell(taken ? '' : `${titleOf(wavelet)} has no ${wanted} transform, so the ends are periodic now.`);
  }

  function choose(chosen) {
    wavelet = chosen;
    settle(boundary);
    draw();
    onChange({ wavelet: wavelet.name, boundary });
  }

  draw();
  const selects = [family.element, order.element, ...(withBoundary ? [ends.element] : [])];
  return {
    element: make('div', { class: 'choice' }, group('Wavelet', ...selects), note),
    show(state) {
      wavelet = waveletOf(state.wavelet) ?? waveletOf('daublet8');
      settle(Object.hasOwn(LETTERS, state.boundary) ? state.boundary : 'periodic');
      draw();
    },
    wavelet: () => wavelet,
    boundary: () => boundary,
  };
}
