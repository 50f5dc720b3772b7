// What the charts, the table and the facts of the panel "A wavelet" show, made of the results of its jobs.

const FLOOR = -100;  // decibels

const short = (value) => String(Number(value.toPrecision(4))).replace('-', '−');
const rangeText = ([from, to]) => `${short(from)} to ${short(to)}`;

function extremes({ x, y }) {
  let least = 0, greatest = 0;
  for (let i = 1; i < y.length; i += 1) {
    if (y[i] < y[least]) least = i;
    if (y[i] > y[greatest]) greatest = i;
  }
  return `largest ${short(y[greatest])} at ${short(x[greatest])}, smallest ${short(y[least])} at ${short(x[least])}`;
}

// The curve without what lies far outside of the support.
function within({ x, y }, [from, to]) {
  const room = 0.03 * (to - from);
  const first = Math.max(x.findIndex((value) => value >= from - room), 0);
  const after = x.findIndex((value) => value > to + room);
  const last = after < 0 ? x.length : after;
  return { x: x.subarray(first, last), y: y.subarray(first, last) };
}

export function functionRecord(title, file, curve) {
  const { support } = curve;
  const shown = within(curve, support);
  return {
    title,
    file,
    xLabel: 'x',
    yLabel: 'value',
    series: [{ label: title.toLowerCase(), ...shown, kind: 'line' }],
    description: `It lives on ${rangeText(support)}; ${extremes(shown)}.`,
  };
}

const positions = ({ first, taps }) => Float64Array.from(taps, (_, i) => first + i);

export function tapsRecord(title, file, bank) {
  const list = ({ first, taps }) => `${Array.from(taps, short).join(', ')} from position ${first} on`;
  return {
    title,
    file,
    xLabel: 'position',
    yLabel: 'tap',
    whole: true,
    series: ['low', 'high'].map((channel) =>
      ({ label: `${channel}-pass`, x: positions(bank[channel]), y: bank[channel].taps, kind: 'stems' })),
    description: `Low-pass: ${list(bank.low)}. High-pass: ${list(bank.high)}.`,
  };
}

const decibels = (magnitude) => 20 * Math.log10(Math.max(magnitude / Math.SQRT2, 10 ** (FLOOR / 20)));

export function responseRecord(filters, orthonormal, inDecibels) {
  const { frequency } = filters;
  const series = (orthonormal ? ['analysis'] : ['analysis', 'synthesis']).flatMap((side) =>
    ['low', 'high'].map((channel) => {
      const y = filters[side].response[channel];
      const label = orthonormal ? `${channel}-pass` : `${side} ${channel}-pass`;
      return { label, x: frequency, y: inDecibels ? y.map(decibels) : y, kind: 'line' };
    }));
  const quarter = (frequency.length - 1) / 2;
  const told = series.map(({ label, y }) =>
    `${label} ${short(y[0])} at 0, ${short(y[quarter])} at 0.25, ${short(y[y.length - 1])} at 0.5`);
  return {
    title: 'Frequency response',
    file: 'frequency-response',
    xLabel: 'frequency, cycles per sample',
    yLabel: inDecibels ? 'decibels' : 'magnitude',
    xRange: [0, 0.5],
    yRange: inDecibels ? [FLOOR, 10] : null,
    series,
    description: `${inDecibels ? 'In decibels of √2' : 'Magnitude'}: ${told.join('; ')}.`,
  };
}

export function endsRecord(kind, { x, [kind]: curves }, side) {
  const name = kind === 'scaling' ? 'Scaling functions' : 'Wavelets';
  const series = curves.map((y, i) => ({ label: String(i), x, y, kind: 'line' }));
  return {
    title: `${name} at the ${side} end`,
    file: `${side}-end-${kind}`,
    xLabel: `x from the ${side} end`,
    yLabel: 'value',
    series,
    description: series.map((each) => `Function ${each.label}: ${extremes(each)}`).join('. '),
  };
}

export function endsText(wavelet, boundary) {
  const texts = {
    periodic: 'The data goes on with its other end. What leaves a function on one side comes in on the other, so ' +
      'that an end that does not fit the other makes large details.',
    symmetric: 'The data goes on with its mirror image, and so do the functions.',
    interval: `The ${wavelet.taps[0] / 2} functions next to each end are of their own, so that nothing is assumed about ` +
      `what lies beyond. The ${wavelet.taps[0] / 2} samples next to the end are coefficients of such functions, not ` +
      'values, and are left out of the curves.',
  };
  return `${texts[boundary]} Numbered from the end inwards.`;
}

export function tapRows(filters, orthonormal) {
  const columns = (orthonormal ? ['analysis'] : ['analysis', 'synthesis']).flatMap((side) =>
    ['low', 'high'].map((channel) => filters[side][channel]));
  const from = Math.min(...columns.map(({ first }) => first));
  const to = Math.max(...columns.map(({ first, taps }) => first + taps.length));
  return Array.from({ length: to - from }, (_, i) =>
    [from + i, ...columns.map(({ first, taps }) => taps[from + i - first] ?? '')]);
}

export const tapHead = (orthonormal) => (orthonormal
  ? ['position', 'low-pass', 'high-pass']
  : ['position', 'analysis low-pass', 'analysis high-pass', 'synthesis low-pass', 'synthesis high-pass']);

// Of the scaling function they are known where the family was made for them.
const scalingMoments = ({ function: family, taps }) => (family === 'coiflet' ? `${taps[0] / 3 - 1}` : null);

export function factsOf(wavelet, filters, orthonormal) {
  const supports = (kind) => (orthonormal
    ? rangeText(filters.analysis.support[kind])
    : `${rangeText(filters.analysis.support[kind])}; dual ${rangeText(filters.synthesis.support[kind])}`);
  return [
    ['Kind', `${orthonormal ? 'orthonormal' : 'biorthogonal'}, ${wavelet.symmetric ? '' : 'not '}symmetric`],
    ['Length of the filters', orthonormal ? wavelet.taps[0] : `analysis ${wavelet.taps[0]}, synthesis ${wavelet.taps[1]}`],
    ['Vanishing moments of the wavelet', orthonormal ? wavelet.moments[0]
      : `analysis ${wavelet.moments[0]}, synthesis ${wavelet.moments[1]}`],
    ['Vanishing moments of the scaling function', scalingMoments(wavelet)],
    ['Support of the scaling function', supports('scaling')],
    ['Support of the wavelet', supports('wavelet')],
    ['Ends of the data', wavelet.boundaries.join(', ')],
    ['Names', [wavelet.name, ...wavelet.aliases].join(', ')],
    ['In PyWavelets', wavelet.pywavelets || 'not there'],
  ].filter(([, value]) => value !== null);
}
