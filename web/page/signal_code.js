// The lines that compute what the panel "A signal" shows.
//
//   linesOf({ file, isShipped, count, wavelet, boundary, level, way, threshold, shrink, depth, cost })
//       -> { python, cpp, octave }

import { fittedLength } from './lengths.js';

const LETTERS = { periodic: '', symmetric: 's', interval: 'i' };

// What is added to the end of the data, negative where something is cut off.
const added = ({ count, boundary, way }, level) => fittedLength(count, level, boundary, way) - count;

const isText = (cost) => cost !== 'count_above';

function pythonData(choice) {
  const path = choice.isShipped ? `examples/data/${choice.file}` : choice.file;
  return `x = np.loadtxt("${path}")`;
}

// { fit: lines that make the data fit, data: its name, back: how the result becomes as long as before }
function pythonFit(choice, level, name) {
  const more = added(choice, level);
  if (more === 0) return { fit: [], data: 'x', back: (text) => text };
  if (more < 0) return { fit: [], data: `x[:${choice.count + more}]`, back: (text) => text };
  return { fit: [`${name} = undula.pad(x, ${level})`], data: `${name}.data`, back: (text) => `${name}.trim(${text})` };
}

function python(choice) {
  const { wavelet, boundary, level, threshold, shrink, depth, cost } = choice;
  const letter = LETTERS[boundary];
  const levels = pythonFit(choice, level, 'padded');
  const packets = depth === level ? { ...levels, fit: [] } : pythonFit(choice, depth, 'to_split');
  const cosines = pythonFit({ ...choice, boundary: 'periodic' }, depth + 1, 'for_cosines');
  const costText = isText(cost) ? `"${cost}"` : `undula.costs.count_above(${threshold})`;
  return [
    'import numpy as np', 'import undula', '', pythonData(choice),
    ...levels.fit,
    `y = undula.dwt${letter}(${levels.data}, ${level}, "${wavelet.name}")`,
    `for part in undula.levels(y, ${level}).details:`,
    `    part[:] = undula.thresholding.${shrink}(part, ${threshold})`,
    `denoised = ${levels.back(`undula.idwt${letter}(y, ${level}, "${wavelet.name}")`)}`,
    '',
    ...packets.fit,
    `table = undula.wpt${letter}(${packets.data}, ${depth}, "${wavelet.name}")`,
    `basis = undula.best_basis(table, ${costText})`,
    'undula.plot.tiling(undula.extract_basis(table, basis), basis)',
    '',
    ...cosines.fit,
    `cosines = undula.cpt(${cosines.data}, ${depth})`,
    `best = undula.best_basis(cosines, ${costText})`,
    'undula.plot.tiling(undula.extract_basis(cosines, best), best, windows=True)',
  ].join('\n');
}

function cppFit(choice) {
  const more = added(choice, choice.level);
  if (more === 0) return [];
  if (more < 0) return [`x.resize(${choice.count + more});`];
  return [`for (int i = 1; i <= ${more}; ++i) x.push_back(x[${choice.count} - i]);  // the mirror image`];
}

const real = (number) => (/[.e]/.test(number) ? String(number) : `${number}.0`);

function cpp(choice) {
  const { wavelet, boundary, level, shrink, count } = choice;
  const threshold = real(choice.threshold);
  const letter = LETTERS[boundary];
  const more = added(choice, level);
  const smooth = Math.ceil((count + more) / 2 ** level);
  const change = shrink === 'soft'
    ? `y[i] -= std::clamp(y[i], -${threshold}, ${threshold});`
    : `if (std::abs(y[i]) < ${threshold}) y[i] = 0;`;
  return [
    ...['efihost/host.h', 'algorithm', 'cmath', 'fstream', 'iterator'].map((name) => `#include <${name}>`),
    '',
    'int main() {',
    ...[
      `std::ifstream file("${choice.file}");`,
      'std::vector<double> x(std::istream_iterator<double>(file), {});',
      ...cppFit(choice),
      'efihost::Pack pack;',
      'efihost::Host host;',
      `const auto w = host.call(pack, "${wavelet.function}", ${wavelet.arguments.join(', ')});`,
      `auto y = host.call(pack, "dwt${letter}", efihost::Value::column(x), ${level}, w).reals();`,
      `for (std::size_t i = ${smooth}; i < y.size(); ++i) ${change}`,
      `auto denoised = host.call(pack, "idwt${letter}", efihost::Value::column(y), ${level}, w).reals();`,
      ...(more > 0 ? [`denoised.resize(${count});`] : []),
    ].map((line) => `    ${line}`),
    '}',
  ].join('\n');
}

function octaveFit({ count }, more) {
  if (more === 0) return [];
  return [more < 0 ? `x = x(1:${count + more});` : `x = [x; x(end:-1:end-${more - 1})];  # the mirror image`];
}

function octave(choice) {
  const { wavelet, boundary, level, threshold, shrink, depth, cost, count } = choice;
  const letter = LETTERS[boundary];
  const more = added(choice, level);
  const smooth = Math.ceil((count + more) / 2 ** level);
  const costs = {
    shannon: '@(c) -c^2 * log (c^2 + (c^2 == 0))', l1: '@abs',
    log_energy: '@(c) 2 * log (max (abs (c), realmin))', count_above: `@(c) double (abs (c) > ${threshold})`,
  };
  const kept = shrink === 'soft'
    ? `y(d) - max (min (y(d), ${threshold}), -${threshold})`
    : `y(d) .* (abs (y(d)) >= ${threshold})`;
  const samePacketLength = added(choice, depth) === more;
  return [
    'pkg load undula', `x = load ("${choice.file}");`,
    ...octaveFit(choice, more),
    `y = dwt${letter} (x, ${level}, "${wavelet.name}");`,
    `d = ${smooth + 1}:numel (y);  # the details`,
    `y(d) = ${kept};`,
    `denoised = idwt${letter} (y, ${level}, "${wavelet.name}")${more > 0 ? `(1:${count})` : ''};`,
    ...(samePacketLength ? [
      '',
      `table = wpt${letter} (x, ${depth}, "${wavelet.name}");`,
      `basis = best_basis (table, ${costs[cost]});`,
      'c = extract_basis (table, basis);',
    ] : []),
  ].join('\n');
}

export const linesOf = (choice) => ({ python: python(choice), cpp: cpp(choice), octave: octave(choice) });
