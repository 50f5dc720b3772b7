// What the charts, the table and the facts of the panel "A wavelet" show, made of the results of its jobs.

const FLOOR = -100; // decibels

const short = (value) => String(Number(value.toPrecision(4))).replace('-', '−');
const rangeText = ([from, to]) => `${short(from)} to ${short(to)}`;

export const isOrthonormal = (wavelet) => wavelet.function !== 'Bspline';

function extremes({ x, y }) {
  let least = 0;
  let greatest = 0;
  for (let i = 1; i < y.length; i += 1) {
    if (y[i] < y[least]) least = i;
    if (y[i] > y[greatest]) greatest = i;
  }
  const told = (name, i) => `${name} ${short(y[i])} at ${short(x[i])}`;
  return `${told('largest', greatest)}, ${told('smallest', least)}`;
}

// The curve without what lies far outside of the support.
function within({ x, y }, [from, to]) {
  const room = 0.03 * (to - from);
  const first = Math.max(
    x.findIndex((value) => value >= from - room),
    0,
  );
  const after = x.findIndex((value) => value > to + room);
  const last = after < 0 ? x.length : after;
  return { x: x.subarray(first, last), y: y.subarray(first, last) };
}

export function functionRecord(title, curve) {
  const { support } = curve;
  const shown = within(curve, support);
  return {
    title,
    xLabel: 'x',
    yLabel: 'value',
    series: [{ label: title.toLowerCase(), ...shown, kind: 'line' }],
    description: `It lives on ${rangeText(support)}; ${extremes(shown)}.`,
  };
}

// The pack's table of the scaling function is made by five stages of the cascade, and stands a little aside.
function tableText({ moment }) {
  const table = 'The pack’s table has 32 points to a unit';
  const shift = -moment / 32;
  if (Math.abs(shift) < 0.001) return `${table}.`;
  const side = shift > 0 ? 'right' : 'left';
  return `${table}, and stands ${short(Math.abs(shift))} to the ${side} of the exact scaling function.`;
}

export function functionsText(wavelet, drawn, { analysis }) {
  const sentences = [
    isOrthonormal(wavelet)
      ? 'The wavelet is orthonormal: it and its scaling function are their own duals.'
      : 'The analysis takes products with the first two, the synthesis adds up the duals.',
  ];
  if (['Bspline22', 'Bspline31'].includes(wavelet.name)) {
    sentences.push('The functions of its analysis are not bounded, so that each finer drawing is taller.');
  }
  if (drawn === 'points') sentences.push(tableText(analysis));
  return sentences.join(' ');
}

const positions = ({ first, taps }) => Float64Array.from(taps, (_, i) => first + i);

export function tapsRecord(title, bank) {
  const list = ({ first, taps }) => `${Array.from(taps, short).join(', ')} from position ${first} on`;
  return {
    title,
    xLabel: 'position',
    yLabel: 'tap',
    whole: true,
    series: ['low', 'high'].map((channel) => ({
      label: `${channel}-pass`,
      x: positions(bank[channel]),
      y: bank[channel].taps,
      kind: 'stems',
    })),
    description: `Low-pass: ${list(bank.low)}. High-pass: ${list(bank.high)}.`,
  };
}

const decibels = (magnitude) => 20 * Math.log10(Math.max(magnitude / Math.SQRT2, 10 ** (FLOOR / 20)));

// Those of an orthonormal wavelet are the same on both sides.
const channelsOf = (wavelet) =>
  (isOrthonormal(wavelet) ? ['analysis'] : ['analysis', 'synthesis']).flatMap((side) =>
    ['low', 'high'].map((channel) => ({
      side,
      channel,
      label: `${isOrthonormal(wavelet) ? '' : `${side} `}${channel}-pass`,
    })),
  );

export function responseRecord(wavelet, filters, inDecibels) {
  const { frequency } = filters;
  const series = channelsOf(wavelet).map(({ side, channel, label }) => {
    const y = filters[side].response[channel];
    return { label, x: frequency, y: inDecibels ? y.map(decibels) : y, kind: 'line' };
  });
  const quarter = (frequency.length - 1) / 2;
  const told = series.map(
    ({ label, y }) =>
      `${label} ${short(y[0])} at 0, ${short(y[quarter])} at 0.25, ${short(y[y.length - 1])} at 0.5`,
  );
  return {
    title: 'Frequency response',
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
    xLabel: `x from the ${side} end`,
    yLabel: 'value',
    series,
    description: series.map((each) => `Function ${each.label}: ${extremes(each)}`).join('. '),
  };
}

export function endsText(wavelet, boundary) {
  const count = wavelet.taps[0] / 2;
  const texts = {
    periodic:
      'The data goes on with its other end. What leaves a function on one side comes in on the other, so ' +
      'that an end that does not fit the other makes large details.',
    symmetric: 'The data goes on with its mirror image, and so do the functions.',
    interval:
      `The ${count} functions next to each end are of their own, so that nothing is assumed about what lies ` +
      `beyond. The ${count} samples next to the end are coefficients of such functions, not values, and are ` +
      'left out of the curves.',
  };
  return `${texts[boundary]} Numbered from the end inwards.`;
}

export function tapRows(wavelet, filters) {
  const columns = channelsOf(wavelet).map(({ side, channel }) => filters[side][channel]);
  const from = Math.min(...columns.map(({ first }) => first));
  const to = Math.max(...columns.map(({ first, taps }) => first + taps.length));
  return Array.from({ length: to - from }, (_, i) => [
    from + i,
    ...columns.map(({ first, taps }) => taps[from + i - first] ?? ''),
  ]);
}

export const tapHead = (wavelet) => ['position', ...channelsOf(wavelet).map(({ label }) => label)];

// Of the scaling function they are known where the family was made for them.
const scalingMoments = ({ function: family, taps }) => (family === 'coiflet' ? `${taps[0] / 3 - 1}` : null);

const bothText = (wavelet, [analysis, synthesis]) =>
  isOrthonormal(wavelet) ? String(analysis) : `analysis ${analysis}, synthesis ${synthesis}`;

export function factsOf(wavelet, filters) {
  const supports = (kind) =>
    bothText(
      wavelet,
      [filters.analysis, filters.synthesis].map(({ support }) => rangeText(support[kind])),
    );
  const kind = isOrthonormal(wavelet) ? 'orthonormal' : 'biorthogonal';
  return [
    ['Kind', `${kind}, ${wavelet.symmetric ? '' : 'not '}symmetric`],
    ['Taps', bothText(wavelet, wavelet.taps)],
    ['Vanishing moments of the wavelet', bothText(wavelet, wavelet.moments)],
    ['Vanishing moments of the scaling function', scalingMoments(wavelet)],
    ['Support of the scaling function', supports('scaling')],
    ['Support of the wavelet', supports('wavelet')],
    ['Ends of the data', wavelet.boundaries.join(', ')],
    ['Names', [wavelet.name, ...wavelet.aliases].join(', ')],
    ['In PyWavelets', wavelet.pywavelets || 'not there'],
  ].filter(([, value]) => value !== null);
}
