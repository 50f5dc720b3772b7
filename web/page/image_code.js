// The lines of Python, C++ and Octave that give what the panel "An image" shows.
//
// `plan` is { image: { file, width, height }, wavelet, boundary, levels, rows, cols, wanted, cost: { name, threshold },
// packets }; `file` is a PGM file of 8 bits, `wanted` the number of coefficients kept, `packets` whether the best basis
// is shown.

import { costCode } from './image_costs.js';
import { transformOf } from './wavelet_choice.js';

const isExtended = ({ image, rows, cols }) => rows !== image.height || cols !== image.width;

// ---- Python ------------------------------------------------------------------------------------------------

function pythonCompression(plan, inverse, basis) {
  const rebuilt = `undula.${inverse}(np.where(np.abs(y) >= smallest, y, 0), ${basis}, "${plan.wavelet.name}")`;
  return [
    `smallest = np.sort(np.abs(y), axis=None)[-${plan.wanted}]`,
    `rebuilt = ${isExtended(plan) ? `padded.trim(${rebuilt})` : rebuilt}`,
    'print(10 * np.log10(255**2 / np.mean((rebuilt - image) ** 2)))',
  ];
}

function python(plan) {
  const { image, wavelet, levels, boundary, cost } = plan;
  const named = (stem) => transformOf(stem, boundary);
  const source = isExtended(plan) ? 'padded.data' : 'image';
  return [
    'import numpy as np',
    'import undula',
    'from PIL import Image',
    '',
    `image = np.asarray(Image.open("${image.file}"), float)`,
    ...(isExtended(plan) ? [`padded = undula.pad(image, ${levels})`] : []),
    `y = undula.${named('dwt')}(${source}, ${levels}, "${wavelet.name}")`,
    ...pythonCompression(plan, named('idwt'), levels),
    ...(plan.packets ? [
      '',
      `table = undula.${named('wpt')}(${source}, ${levels}, "${wavelet.name}")`,
      `basis = undula.best_basis(table, ${costCode(cost).python})`,
      'y = undula.extract_basis(table, basis)',
      ...pythonCompression(plan, named('iwpt'), 'basis'),
    ] : []),
  ];
}

// ---- Octave ------------------------------------------------------------------------------------------------

function octaveCompression(plan, inverse, basis) {
  return [
    "largest = sort (abs (y(:)), 'descend');",
    `y(abs (y) < largest(${plan.wanted})) = 0;`,
    `rebuilt = ${inverse} (y, ${basis}, "${plan.wavelet.name}")(1:rows (image), 1:columns (image));`,
    '10 * log10 (255^2 / mean ((rebuilt - image)(:) .^ 2))',
  ];
}

// imread makes a logical matrix of a file that has only black and white.
const octaveImage = ({ file, width, height }) => [
  `file = fopen ("${file}");`,
  `fseek (file, -${width * height}, 'eof');`,
  `image = fread (file, [${width}, ${height}])';`,
  'fclose (file);',
];

function octave(plan) {
  const { image, wavelet, levels, boundary, cost, rows, cols } = plan;
  const named = (stem) => transformOf(stem, boundary);
  const extended = isExtended(plan);
  const source = extended ? 'x' : 'image';
  return [
    'pkg load undula',
    '',
    ...octaveImage(image),
    ...(extended ? [
      'mirrored = @(n, length) [1:n, n:-1:1](1:length);',
      `x = image(mirrored (rows (image), ${rows}), mirrored (columns (image), ${cols}));`,
    ] : []),
    `y = ${named('dwt')} (${source}, ${levels}, "${wavelet.name}");`,
    ...octaveCompression(plan, named('idwt'), levels),
    ...(plan.packets ? [
      '',
      `table = ${named('wpt')} (${source}, ${levels}, "${wavelet.name}");`,
      `basis = best_basis (table, ${costCode(cost).octave});`,
      'y = extract_basis (table, basis);',
      ...octaveCompression(plan, named('iwpt'), 'basis'),
    ] : []),
  ];
}

// ---- C++ ---------------------------------------------------------------------------------------------------

const CPP_IMAGE = [
  'struct Image {',
  '    int rows, cols;',
  '    std::vector<double> values;  // by columns',
  '};',
  '',
  'Image read(const char* path) {  // a PGM file of 8 bits',
  '    std::ifstream file(path, std::ios::binary);',
  '    std::string kind;',
  '    int rows = 0, cols = 0, white = 0;',
  '    file >> kind >> cols >> rows >> white;',
  '    file.get();',
  '    Image image{rows, cols, std::vector<double>(rows * cols)};',
  '    for (int i = 0; i < rows; ++i) {',
  '        for (int j = 0; j < cols; ++j) image.values[i + rows * j] = file.get();',
  '    }',
  '    return image;',
  '}',
];

const CPP_EXTENDED = [
  '',
  'Image extended(const Image& image, int rows, int cols) {  // by its mirror image',
  '    const auto mirrored = [](int i, int length) { return i < length ? i : 2 * length - 1 - i; };',
  '    Image larger{rows, cols, std::vector<double>(rows * cols)};',
  '    for (int i = 0; i < rows; ++i) {',
  '        for (int j = 0; j < cols; ++j) {',
  '            larger.values[i + rows * j] =',
  '                image.values[mirrored(i, image.rows) + image.rows * mirrored(j, image.cols)];',
  '        }',
  '    }',
  '    return larger;',
  '}',
];

const CPP_KEEP = [
  '',
  'void keepLargest(std::vector<double>& y, int count) {',
  '    std::vector<double> magnitudes(y.size());',
  '    std::transform(y.begin(), y.end(), magnitudes.begin(), [](double c) { return std::abs(c); });',
  '    std::sort(magnitudes.rbegin(), magnitudes.rend());',
  '    for (double& c : y) {',
  '        if (std::abs(c) < magnitudes[count - 1]) c = 0;',
  '    }',
  '}',
  '',
  'double decibels(const Image& image, const std::vector<double>& rebuilt, int stride) {',
  '    double sum = 0;',
  '    for (int j = 0; j < image.cols; ++j) {',
  '        for (int i = 0; i < image.rows; ++i) {',
  '            const double error = rebuilt[i + stride * j] - image.values[i + image.rows * j];',
  '            sum += error * error;',
  '        }',
  '    }',
  '    return 10 * std::log10(255 * 255 * double(image.values.size()) / sum);',
  '}',
];

function cppCompression(plan, inverse, basis) {
  const values = `efihost::Value::matrix(${plan.rows}, ${plan.cols}, y)`;
  return [
    `keepLargest(y, ${plan.wanted});`,
    `rebuilt = host.call(pack, "${inverse}", ${values}, ${basis}, w).reals();`,
    `std::printf("%.2f dB\\n", decibels(image, rebuilt, ${plan.rows}));`,
  ];
}

function cppMain(plan) {
  const { image, wavelet, levels, boundary, cost, rows, cols } = plan;
  const named = (stem) => transformOf(stem, boundary);
  return [
    'efihost::Pack pack;',
    'efihost::Host host;',
    `const Image image = read("${image.file}");`,
    `const Image source = ${isExtended(plan) ? `extended(image, ${rows}, ${cols})` : 'image'};`,
    `const auto x = efihost::Value::matrix(${rows}, ${cols}, source.values);`,
    `const auto w = host.call(pack, "${wavelet.function}", ${wavelet.arguments.join(', ')});`,
    '',
    `auto y = host.call(pack, "${named('dwt')}", x, ${levels}, w).reals();`,
    'std::vector<double> rebuilt;',
    ...cppCompression(plan, named('idwt'), levels),
    ...(plan.packets ? [
      '',
      `const auto cost = ${costCode(cost).cpp};`,
      `const auto table = host.call(pack, "${named('wpt')}", x, ${levels}, w);`,
      'const auto basis = host.call(pack, "best_basis", table, cost);',
      'y = host.call(pack, "extract_basis", table, basis).reals();',
      ...cppCompression(plan, named('iwpt'), 'basis'),
    ] : []),
  ];
}

function cpp(plan) {
  return [
    ...['efihost/host.h', 'algorithm', 'cmath', 'cstdio', 'fstream', 'limits', 'string', 'vector']
      .map((header) => `#include <${header}>`),
    '',
    ...CPP_IMAGE,
    ...(isExtended(plan) ? CPP_EXTENDED : []),
    ...CPP_KEEP,
    '',
    'int main() {',
    ...cppMain(plan).map((line) => (line ? `    ${line}` : '')),
    '}',
  ];
}

export function codeOf(plan) {
  const text = (lines) => `${lines.join('\n')}\n`;
  return { python: text(python(plan)), cpp: text(cpp(plan)), octave: text(octave(plan)) };
}
