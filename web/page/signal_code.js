// The lines that compute what the panel "A signal" shows.
//
//   linesOf({ file, count, wavelet, boundary, level, way, threshold, shrink, depth, cost }) -> { python, cpp, octave }

import { costCode } from './image_costs.js';
import { fittedLength } from './lengths.js';
import { transformOf } from './wavelet_choice.js';

// The lengths that are transformed.
function lengthsOf({ count, boundary, way, level, depth }) {
  return {
    levels: fittedLength(count, level, boundary, way),
    packets: fittedLength(count, depth, boundary, way),
    cosines: fittedLength(count, depth + 1, 'periodic', way),
  };
}

const smoothLength = ({ level }, length) => Math.ceil(length / 2 ** level);

const costOf = ({ cost, threshold }) => costCode({ name: cost, threshold });

const text = (lines) => lines.join('\n');

// ---- Python

// { fit: lines that make the data fit, data: its name, back: how the result becomes as long as before }
function pythonFit({ count }, length, level, name) {
  if (length === count) return { fit: [], data: 'x', back: (result) => result };
  if (length < count) return { fit: [], data: `x[:${length}]`, back: (result) => result };
  return {
    fit: [`${name} = undula.pad(x, ${level})`], data: `${name}.data`, back: (result) => `${name}.trim(${result})`,
  };
}

function python(choice) {
  const { wavelet, boundary, level, threshold, shrink, depth } = choice;
  const named = (stem) => transformOf(stem, boundary);
  const lengths = lengthsOf(choice);
  const levels = pythonFit(choice, lengths.levels, level, 'padded');
  const packets = depth === level ? { ...levels, fit: [] } : pythonFit(choice, lengths.packets, depth, 'to_split');
  const cosines = pythonFit(choice, lengths.cosines, depth + 1, 'for_cosines');
  const cost = costOf(choice).python;
  return text([
    'import numpy as np', 'import undula', '', `x = np.loadtxt("${choice.file}")`,
    ...levels.fit,
    `y = undula.${named('dwt')}(${levels.data}, ${level}, "${wavelet.name}")`,
    `for part in undula.levels(y, ${level}).details:`,
    `    part[:] = undula.thresholding.${shrink}(part, ${threshold})`,
    `denoised = ${levels.back(`undula.${named('idwt')}(y, ${level}, "${wavelet.name}")`)}`,
    '',
    ...packets.fit,
    `table = undula.${named('wpt')}(${packets.data}, ${depth}, "${wavelet.name}")`,
    `basis = undula.best_basis(table, ${cost})`,
    'undula.plot.tiling(undula.extract_basis(table, basis), basis)',
    '',
    ...cosines.fit,
    `cosines = undula.cpt(${cosines.data}, ${depth})`,
    `best = undula.best_basis(cosines, ${cost})`,
    'undula.plot.tiling(undula.extract_basis(cosines, best), best, windows=True)',
  ]);
}

// ---- C++

const CPP_FITTED = [
  '',
  '// Cut, or extended by the mirror image.',
  'efihost::Value fitted(std::vector<double> x, std::size_t length) {',
  '    const std::size_t count = x.size();',
  '    x.resize(length);',
  '    for (std::size_t i = count; i < length; ++i) x[i] = x[2 * count - 1 - i];',
  '    return efihost::Value::column(x);',
  '}',
];

const real = (number) => (/[.e]/.test(number) ? String(number) : `${number}.0`);

function cpp(choice) {
  const { wavelet, boundary, level, shrink, depth, count } = choice;
  const named = (stem) => transformOf(stem, boundary);
  const lengths = lengthsOf(choice);
  const data = (length) => (length === count ? 'efihost::Value::column(x)' : `fitted(x, ${length})`);
  const threshold = real(choice.threshold);
  const change = shrink === 'soft'
    ? `y[i] -= std::clamp(y[i], -${threshold}, ${threshold});`
    : `if (std::abs(y[i]) < ${threshold}) y[i] = 0;`;
  return text([
    ...['efihost/host.h', 'algorithm', 'cmath', 'fstream', 'iterator', 'limits', 'vector']
      .map((name) => `#include <${name}>`),
    ...(Object.values(lengths).every((length) => length === count) ? [] : CPP_FITTED),
    '',
    'int main() {',
    ...[
      `std::ifstream file("${choice.file}");`,
      'const std::vector<double> x(std::istream_iterator<double>(file), {});',
      'efihost::Pack pack;',
      'efihost::Host host;',
      `const auto w = host.call(pack, "${wavelet.function}", ${wavelet.arguments.join(', ')});`,
      `auto y = host.call(pack, "${named('dwt')}", ${data(lengths.levels)}, ${level}, w).reals();`,
      `for (std::size_t i = ${smoothLength(choice, lengths.levels)}; i < y.size(); ++i) ${change}`,
      `auto denoised = host.call(pack, "${named('idwt')}", efihost::Value::column(y), ${level}, w).reals();`,
      ...(lengths.levels > count ? [`denoised.resize(${count});`] : []),
      '',
      `const auto cost = ${costOf(choice).cpp};`,
      `const auto table = host.call(pack, "${named('wpt')}", ${data(lengths.packets)}, ${depth}, w);`,
      'const auto basis = host.call(pack, "best_basis", table, cost);',
      'const auto packets = host.call(pack, "extract_basis", table, basis).reals();',
      '',
      `const auto cosines = host.call(pack, "cpt", ${data(lengths.cosines)}, ${depth});`,
      'const auto best = host.call(pack, "best_basis", cosines, cost);',
      'const auto windows = host.call(pack, "extract_basis", cosines, best).reals();',
    ].map((line) => (line ? `    ${line}` : '')),
    '}',
  ]);
}

// ---- Octave

function octaveData({ count }, length) {
  if (length === count) return 'x';
  return length < count ? `x(1:${length})` : `[x; x(end:-1:end-${length - count - 1})]`;
}

function octave(choice) {
  const { wavelet, boundary, level, threshold, shrink, depth, count } = choice;
  const named = (stem) => transformOf(stem, boundary);
  const lengths = lengthsOf(choice);
  const cost = costOf(choice).octave;
  const kept = shrink === 'soft'
    ? `y(details) - max (min (y(details), ${threshold}), -${threshold})`
    : `y(details) .* (abs (y(details)) >= ${threshold})`;
  const isExtended = Math.max(...Object.values(lengths)) > count;
  return text([
    'pkg load undula', `x = load ("${choice.file}");${isExtended ? '  # extended by its mirror image below' : ''}`,
    `y = ${named('dwt')} (${octaveData(choice, lengths.levels)}, ${level}, "${wavelet.name}");`,
    `details = ${smoothLength(choice, lengths.levels) + 1}:numel (y);`,
    `y(details) = ${kept};`,
    `denoised = ${named('idwt')} (y, ${level}, "${wavelet.name}")${lengths.levels > count ? `(1:${count})` : ''};`,
    '',
    `table = ${named('wpt')} (${octaveData(choice, lengths.packets)}, ${depth}, "${wavelet.name}");`,
    `basis = best_basis (table, ${cost});`,
    'packets = extract_basis (table, basis);',
    '',
    `cosines = cpt (${octaveData(choice, lengths.cosines)}, ${depth});`,
    `best = best_basis (cosines, ${cost});`,
    'windows = extract_basis (cosines, best);',
  ]);
}

export const linesOf = (choice) => ({ python: python(choice), cpp: cpp(choice), octave: octave(choice) });
