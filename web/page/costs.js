// Costs of coefficients, as Python's `undula.costs` defines them.

const SMALLEST = 2.2250738585072014e-308;  // of the normal numbers

function shannon(x) {
  const energy = x * x;
  return energy === 0 ? 0 : -energy * Math.log(energy);
}

const logEnergy = (x) => 2 * Math.log(Math.max(Math.abs(x), SMALLEST));

const countAbove = (threshold) => (x) => (Math.abs(x) > threshold ? 1 : 0);

export const COSTS = [
  { value: 'shannon', text: 'Shannon entropy' },
  { value: 'l1', text: 'l1, the sum of magnitudes' },
  { value: 'log_energy', text: 'logarithm of energy' },
  { value: 'count_above', text: 'count above the threshold' },
];

export function costOf(name, threshold) {
  return { shannon, l1: Math.abs, log_energy: logEnergy, count_above: countAbove(threshold) }[name];
}

// Fails where costs leave the range of double precision, so that they tell no basis from another.
export function checkCosts(name, samples, totals) {
  const { text } = COSTS.find(({ value }) => value === name);
  const fail = (size) => {
    throw new Error(
      `The samples are too ${size} for this cost: ${text}. Please choose another cost or scale the data.`);
  };
  if (!totals.every(Number.isFinite)) fail('large');
  const largest = samples.reduce((most, x) => Math.max(most, Math.abs(x)), 0);
  const least = { shannon: Math.sqrt(SMALLEST) / Number.EPSILON, log_energy: SMALLEST }[name];
  if (largest > 0 && largest < least) fail('small');
}
