// The lines of Python, C++ and Octave that give the curves of the panel "A wavelet".
//
// The curves are listed first, as they are common to the languages. A curve is one of
//   { name, call: 'points', function, index, first, last, perUnit }
//       values at (first to last) / perUnit; `index` is that of a packet, or undefined
//   { name, call: 'inverse', function, level, length, place, pair, start }
//       what the inverse transform makes of one coefficient; `pair` holds the offsets if it is that of the
//       exchanged pair, and `start` is the first x

import { LEVELS, LEVELS_AT_ENDS } from './levels.js';

const NAMES = {
  analysis: { scaling: ['scaling', 'father'], wavelet: ['mother_wavelet', 'mother'] },
  synthesis: { scaling: ['dual_scaling', 'dlfather'], wavelet: ['dual_wavelet', 'dlmother'] },
};

const INVERSE = { periodic: 'idwt', symmetric: 'idwts', interval: 'idwti' };

function atPoints(name, functionName, { x }, index) {
  const perUnit = Math.round(1 / (x[1] - x[0]));
  const [first, last] = [x[0], x[x.length - 1]].map((end) => Math.round(end * perUnit));
  return { name, call: 'points', function: functionName, index, first, last, perUnit };
}

function functionCurves({ filters, functions }, drawn) {
  const sides = ['analysis', 'synthesis'].filter((side) => functions[side]);
  return sides.flatMap((side) =>
    ['scaling', 'wavelet'].map((kind) => {
      const [name, functionName] = NAMES[side][kind];
      const curve = functions[side][kind];
      if (drawn === 'points') return atPoints(name, functionName, curve);
      const pair =
        side === 'analysis' && functions.synthesis
          ? [filters.synthesis.low.first, filters.analysis.low.first]
          : null;
      const [length, start] = [curve.x.length, curve.x[0]];
      return {
        name,
        call: 'inverse',
        function: 'idwt',
        level: LEVELS,
        length,
        place: curve.place,
        pair,
        start,
      };
    }),
  );
}

function packetCurves({ packet }, index) {
  const names = { analysis: ['packet', 'wavelet'], synthesis: ['dual_packet', 'dlwavelet'] };
  return Object.entries(packet).map(([side, curve]) => atPoints(...names[side], curve, index));
}

function endCurves({ ends }, boundary, side) {
  const place = side === 'right' ? ends.units - 1 : 0;
  const length = ends.units * 2 ** LEVELS_AT_ENDS;
  const common = { call: 'inverse', function: INVERSE[boundary], level: LEVELS_AT_ENDS, length, pair: null };
  return [
    { ...common, name: 'end_scaling', place },
    { ...common, name: 'end_wavelet', place: ends.units + place },
  ];
}

// What the functions at points take.
const inputs = ({ index }, name) => (index === undefined ? `x, "${name}"` : `x, 0, 0, ${index}, w`);

const factorOf = ({ level }) => (level % 2 ? null : 2 ** (level / 2));

// ---- Python ------------------------------------------------------------------------------------------------

function pythonCurve(curve, name) {
  if (curve.call === 'points') {
    const x = `np.arange(${curve.first}, ${curve.last + 1}) / ${curve.perUnit}`;
    return [`x = ${x}`, `${curve.name} = undula.${curve.function}(${inputs(curve, name)})`];
  }
  const filter = curve.pair ? `w[:, ::-1], offsets=[[${curve.pair.join(', ')}]]` : 'w';
  const unit = `np.eye(1, ${curve.length}, ${curve.place})[0]`;
  const factor = factorOf(curve) ?? `2**${curve.level / 2}`;
  return [
    ...(curve.start === undefined
      ? []
      : [`x = ${curve.start} + np.arange(${curve.length}) / ${2 ** curve.level}`]),
    `${curve.name} = ${factor} * undula.${curve.function}(${unit}, ${curve.level}, ${filter})`,
  ];
}

function python({ wavelet, parts }) {
  return [
    'import numpy as np',
    'import undula',
    '',
    `w = undula.${wavelet.function}(${wavelet.arguments.join(', ')})`,
    ...parts.flatMap(([title, curves]) => [
      '',
      `# ${title}`,
      ...curves.flatMap((curve) => pythonCurve(curve, wavelet.name)),
    ]),
  ];
}

// ---- Octave ------------------------------------------------------------------------------------------------

function octaveCurve(curve, name) {
  if (curve.call === 'points') {
    return [
      `x = (${curve.first}:${curve.last}) / ${curve.perUnit};`,
      `${curve.name} = arrayfun (@(x) ${curve.function} (${inputs(curve, name)}), x);`,
    ];
  }
  const filter = curve.pair ? `fliplr (w), [${curve.pair.join(', ')}]` : 'w';
  const unit = `unit (${curve.length}, ${curve.place})`;
  const factor = factorOf(curve) ?? `2^${curve.level / 2}`;
  return [
    ...(curve.start === undefined
      ? []
      : [`x = ${curve.start} + (0:${curve.length - 1}) / ${2 ** curve.level};`]),
    `${curve.name} = ${factor} * ${curve.function} (${unit}, ${curve.level}, ${filter});`,
  ];
}

function octave({ wavelet, parts }) {
  return [
    'pkg load undula',
    '',
    `w = ${wavelet.function} (${wavelet.arguments.join(', ')});`,
    "unit = @(n, place) double ((0:n-1)' == place);",
    ...parts.flatMap(([title, curves]) => [
      '',
      `% ${title}`,
      ...curves.flatMap((curve) => octaveCurve(curve, wavelet.name)),
    ]),
  ];
}

// ---- C++ ---------------------------------------------------------------------------------------------------

function cppCurve(curve, name) {
  if (curve.call === 'points') {
    return [
      `std::vector<double> ${curve.name};`,
      `for (int i = ${curve.first}; i <= ${curve.last}; ++i) {`,
      `    const double x = i / ${curve.perUnit}.0;`,
      `    ${curve.name}.push_back(host.call(pack, "${curve.function}", ${inputs(curve, name)}).real());`,
      '}',
    ];
  }
  const filter = curve.pair ? 'exchanged, offsets' : 'w';
  const values = `unit(${curve.length}, ${curve.place}), ${curve.level}, ${filter}`;
  return [
    ...(curve.start === undefined ? [] : [`// From x = ${curve.start} on, ${2 ** curve.level} to a unit.`]),
    `auto ${curve.name} = host.call(pack, "${curve.function}", ${values}).reals();`,
    `for (double& value : ${curve.name}) value *= ${factorOf(curve) ?? `std::sqrt(${2 ** curve.level})`};`,
  ];
}

function cpp({ wavelet, parts }) {
  const curves = parts.flatMap(([, ofPart]) => ofPart);
  const pair = curves.find((curve) => curve.pair)?.pair;
  const unit = [
    'const auto unit = [](int length, int place) {',
    '    std::vector<double> column(length);',
    '    column[place] = 1;',
    '    return Value::column(column);',
    '};',
  ];
  const exchanged = [
    'const auto taps = w.reals();',
    'std::vector<double> columns(taps.begin() + taps.size() / 2, taps.end());',
    'columns.insert(columns.end(), taps.begin(), taps.begin() + taps.size() / 2);',
    'const auto exchanged = Value::matrix(taps.size() / 2, 2, columns);',
    `const auto offsets = Value::matrix(1, 2, std::vector<double>{${pair?.join(', ')}});`,
  ];
  const body = [
    'efihost::Pack pack;',
    'efihost::Host host;',
    `const auto w = host.call(pack, "${wavelet.function}", ${wavelet.arguments.join(', ')});`,
    ...unit,
    ...(pair ? exchanged : []),
    ...parts.flatMap(([title, ofPart]) => [
      '',
      `// ${title}`,
      ...ofPart.flatMap((curve) => cppCurve(curve, wavelet.name)),
    ]),
  ];
  return [
    '#include <efihost/host.h>',
    '#include <cmath>',
    '#include <vector>',
    '',
    'using efihost::Value;',
    '',
    'int main() {',
    ...body.map((line) => (line ? `    ${line}` : '')),
    '}',
  ];
}

// `results` are those of the jobs filters, functions, packet and ends.
export function codeOf({ wavelet, boundary, drawn, index, side }, results) {
  const parts = [
    ['Scaling function and wavelet', functionCurves(results, drawn)],
    [`Packet ${index}`, packetCurves(results, index)],
    [`The first functions at the ${side} end`, endCurves(results, boundary, side)],
  ];
  const text = (lines) => `${lines.join('\n')}\n`;
  const plan = { wavelet, parts };
  return { python: text(python(plan)), cpp: text(cpp(plan)), octave: text(octave(plan)) };
}
