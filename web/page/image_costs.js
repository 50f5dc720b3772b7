// The costs that the panel "An image" offers, and the same in Python, C++ and Octave.

import { COSTS, costOf } from './costs.js';

const CLIPPED = 'clipped_energy';

export const IMAGE_COSTS = [...COSTS, { value: CLIPPED, text: 'energy, clipped at the threshold' }];

export const hasThreshold = (name) => ['count_above', CLIPPED].includes(name);

export function costFunction(name, threshold) {
  const most = threshold * threshold;
  return name === CLIPPED ? (x) => Math.min(x * x, most) : costOf(name, threshold);
}

const CPP = {
  shannon: () => 'x * x == 0 ? 0.0 : -x * x * std::log(x * x)',
  l1: () => 'std::abs(x)',
  log_energy: () => '2 * std::log(std::max(std::abs(x), std::numeric_limits<double>::min()))',
  count_above: (threshold) => `std::abs(x) > ${threshold} ? 1.0 : 0.0`,
  clipped_energy: (threshold) => `std::min(x * x, std::pow(${threshold}, 2))`,
};

const OCTAVE = {
  shannon: () => '-x^2 * log (x^2 + (x^2 == 0))',
  l1: () => 'abs (x)',
  log_energy: () => '2 * log (max (abs (x), realmin))',
  count_above: (threshold) => `double (abs (x) > ${threshold})`,
  clipped_energy: (threshold) => `min (x^2, ${threshold}^2)`,
};

export const costCode = ({ name, threshold }) => ({
  python: `undula.costs.${name}${hasThreshold(name) ? `(${threshold})` : ''}`,
  cpp: `efihost::Value::function([](double x) { return ${CPP[name](threshold)}; })`,
  octave: `@(x) ${OCTAVE[name](threshold)}`,
});
