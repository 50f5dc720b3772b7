// What the panel "An image" computes in the worker.
//
// A setting is { image: { id, width, height, pixels }, wavelet, boundary, levels }, and a basis { id, packets } with
// packets as [level, row position, column position]; null stands for the wavelet basis. What belongs to a setting is
// kept until there is another, and made again where a cancelled worker took it along.

import { costFunction } from './image_costs.js';
import { readImage } from './image_file.js';
import { blocksOf, nameOf, transformedSize, waveletBasis } from './image_layout.js';
import { Matrix, realFunction } from './undula.js';
import { transformOf } from './wavelet_choice.js';

const WHITE = 255;
const SHARES = [0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50];  // per cent

const memory = new Map();

function remembered(kind, key, make) {
  if (memory.get(kind)?.key !== key) {
    memory.delete(kind);  // so that there is room for the new
    memory.set(kind, { key, value: make() });
  }
  return memory.get(kind).value;
}

const keyOf = ({ image, wavelet, boundary, levels }, basis) =>
  [image.id, wavelet.name, boundary, levels, basis?.id].join(' ');

const filterOf = (undula, { wavelet }) => undula.call(wavelet.function, wavelet.arguments);

const matrixOf = (packets) =>
  new Matrix(packets.length, 3, Float64Array.from({ length: 3 * packets.length }, (_, i) =>
    packets[i % packets.length][Math.floor(i / packets.length)]));

// ---- The transform -----------------------------------------------------------------------------------------

const mirrored = (i, length) => (i % (2 * length) < length ? i % length : length - 1 - (i % length));

// The image by columns, extended at the right and below by its mirror image.
function extendedImage({ image, boundary, levels }) {
  const { width, height, pixels } = image;
  const { rows, cols } = transformedSize(image, levels, boundary);
  const values = new Float64Array(rows * cols);
  for (let row = 0; row < rows; row += 1) {
    const start = width * mirrored(row, height);
    for (let col = 0; col < cols; col += 1) values[row + rows * col] = pixels[start + mirrored(col, width)];
  }
  return new Matrix(rows, cols, values);
}

function transformed(undula, stems, setting, basis, matrix) {
  const name = transformOf(stems[basis ? 1 : 0], setting.boundary);
  return undula.call(name, [matrix, basis ? matrixOf(basis.packets) : setting.levels, filterOf(undula, setting)]);
}

const forward = (undula, setting, basis) =>
  transformed(undula, ['dwt', 'wpt'], setting, basis, extendedImage(setting));

const backward = (undula, setting, basis, coefficients) =>
  transformed(undula, ['idwt', 'iwpt'], setting, basis, coefficients);

// The coefficients, and their magnitudes in ascending order.
const coefficientsOf = (undula, setting, basis) =>
  remembered(basis ? 'best' : 'wavelet', keyOf(setting, basis), () => {
    const matrix = forward(undula, setting, basis);
    return { matrix, sorted: Float64Array.from(matrix.re, Math.abs).sort() };
  });

// ---- From few coefficients ---------------------------------------------------------------------------------

// Those of the same magnitude as the last are kept too; zeros are not counted.
function keptOf({ matrix, sorted }, share) {
  const wanted = Math.min(Math.max(1, Math.round((share / 100) * sorted.length)), sorted.length);
  const smallest = sorted[sorted.length - wanted];
  const values = new Float64Array(matrix.re.length);
  let count = 0;
  for (let i = 0; i < values.length; i += 1) {
    const value = matrix.re[i];
    if (value === 0 || Math.abs(value) < smallest) continue;
    values[i] = value;
    count += 1;
  }
  return { wanted, smallest, count, matrix: new Matrix(matrix.rows, matrix.cols, values) };
}

// Of the image alone, not of what it was extended by; neither rounded nor clipped.
function meanSquare({ width, height, pixels }, { rows, re }) {
  let sum = 0;
  for (let row = 0; row < height; row += 1) {
    for (let col = 0; col < width; col += 1) sum += (re[row + rows * col] - pixels[row * width + col]) ** 2;
  }
  return sum / (width * height);
}

const decibels = (error) => 10 * Math.log10(WHITE ** 2 / error);

function paint({ width, height }, { rows, re }) {
  const data = new Uint8ClampedArray(4 * width * height);
  for (let row = 0, at = 0; row < height; row += 1) {
    for (let col = 0; col < width; col += 1, at += 4) {
      const value = re[row + rows * col];
      data[at] = value;
      data[at + 1] = value;
      data[at + 2] = value;
      data[at + 3] = 255;
    }
  }
  return data;
}

function rebuiltFrom(undula, setting, basis, share) {
  const { matrix, ...numbers } = keptOf(coefficientsOf(undula, setting, basis), share);
  const rebuilt = backward(undula, setting, basis, matrix);
  const psnr = decibels(meanSquare(setting.image, rebuilt));
  return { ...numbers, size: [matrix.rows, matrix.cols], total: matrix.re.length, psnr, rebuilt };
}

function painted(undula, setting, basis, share, report) {
  const { rebuilt, ...numbers } = rebuiltFrom(undula, setting, basis, share);
  const data = paint(setting.image, rebuilt);
  report.transfer(data.buffer);
  return { ...numbers, data };
}

// ---- Pictures of coefficients, as a number from 0 to 255 for each, by rows ---------------------------------

function paintBlock(target, { rows, cols, re }, { top, left, height, width }, shade) {
  for (let row = top; row < top + height; row += 1) {
    for (let col = left; col < left + width; col += 1) target[row * cols + col] = shade(re[row + rows * col]);
  }
}

function valuesIn({ rows, re }, { top, left, height, width }) {
  const values = new Float64Array(height * width);
  for (let col = 0; col < width; col += 1) {
    values.set(re.subarray((left + col) * rows + top, (left + col) * rows + top + height), col * height);
  }
  return values;
}

function factsOf(values) {
  let [least, greatest, energy] = [Infinity, -Infinity, 0];
  for (const value of values) {
    least = Math.min(least, value);
    greatest = Math.max(greatest, value);
    energy += value * value;
  }
  return { least, greatest, energy };
}

const SAMPLED = 2 ** 14;

// A magnitude that about 2 % exceed.
function nearlyGreatest(values) {
  const step = Math.ceil(values.length / SAMPLED);
  const sample = values.filter((_, i) => i % step === 0).map(Math.abs).sort();
  return sample[Math.floor(0.98 * (sample.length - 1))] || Math.abs(factsOf(values).greatest) || 1;
}

// The details of a level have one scale, with 0 in the middle.
function mosaicOf(matrix, levels) {
  const picture = new Uint8ClampedArray(matrix.re.length);
  const blocks = blocksOf(matrix.rows, matrix.cols, waveletBasis(levels));
  const contents = blocks.map((block) => valuesIn(matrix, block));
  const facts = contents.map(factsOf);
  const total = facts.reduce((sum, { energy }) => sum + energy, 0) || 1;
  blocks.forEach((block, i) => {
    const { least, greatest } = facts[i];
    const first = 1 + 3 * Math.floor((i - 1) / 3);
    const most = i ? Math.max(...contents.slice(first, first + 3).map(nearlyGreatest)) : 0;
    const shade = i ? (value) => 128 + (127 * value) / most
      : (value) => (greatest > least ? (255 * (value - least)) / (greatest - least) : 128);
    paintBlock(picture, matrix, block, shade);
  });
  const named = blocks.map((block, i) => ({
    ...block, name: nameOf(block), share: facts[i].energy / total,
    greatest: Math.max(Math.abs(facts[i].least), Math.abs(facts[i].greatest)),
  }));
  return { picture, blocks: named };
}

function logarithmicPicture({ rows, cols, re }, greatest) {
  const picture = new Uint8ClampedArray(re.length);
  const scale = 255 / (Math.log1p(greatest) || 1);
  paintBlock(picture, { rows, cols, re }, { top: 0, left: 0, height: rows, width: cols },
    (value) => scale * Math.log1p(Math.abs(value)));
  return picture;
}

// ---- The jobs ----------------------------------------------------------------------------------------------

const SAMPLE = 'camera.pgm';

async function sampleBlob() {
  const response = await fetch(new URL(`./data/${SAMPLE}`, import.meta.url));
  if (!response.ok) throw new Error(`The sample ${SAMPLE} could not be loaded: ${response.status}.`);
  return response.blob();
}

// Without a file the image that the page has with it.
async function read(undula, { file }, report) {
  report(null, 'Reading the image');
  return file ? readImage(file, file.name) : readImage(await sampleBlob(), SAMPLE);
}

function transform(undula, { setting }, report) {
  const { matrix } = coefficientsOf(undula, setting, null);
  const { picture, blocks } = mosaicOf(matrix, setting.levels);
  report.transfer(picture.buffer);
  return { rows: matrix.rows, cols: matrix.cols, blocks, picture };
}

// From the same share of the coefficients of the wavelet basis and, if there is one, of another.
function rebuild(undula, { setting, basis, share }, report) {
  return {
    wavelet: painted(undula, setting, null, share, report),
    best: basis && painted(undula, setting, basis, share, report),
  };
}

const TOLD_EVERY = 2 ** 17;

// A cost that tells how far the search is, which asks it once for each coefficient of each level.
function countingCost(cost, calls, report) {
  let count = 0;
  return realFunction((x) => {
    count += 1;
    if (count % TOLD_EVERY === 0) report(count / calls, 'Searching the best basis');
    return cost(x);
  });
}

const sumOf = (values, cost) => values.reduce((sum, value) => sum + cost(value), 0);

const packetsOf = ({ rows, re }) => Array.from({ length: rows }, (_, i) => [re[i], re[i + rows], re[i + 2 * rows]]);

function search(undula, { setting, cost: { name, threshold }, basisId }, report) {
  memory.delete('best');
  report(null, 'Computing the packets');
  const cost = costFunction(name, threshold);
  const table = undula.call(transformOf('wpt', setting.boundary),
    [extendedImage(setting), setting.levels, filterOf(undula, setting)]);
  const calls = table.length * table[0].re.length;
  const packets = packetsOf(undula.call('best_basis', [table, countingCost(cost, calls, report)]));
  const basis = { id: basisId, packets };
  const { matrix, sorted } = coefficientsOf(undula, setting, basis);
  const picture = logarithmicPicture(matrix, sorted[sorted.length - 1]);
  report.transfer(picture.buffer);
  return {
    basis, picture, rows: matrix.rows, cols: matrix.cols, blocks: blocksOf(matrix.rows, matrix.cols, packets),
    cost: { wavelet: sumOf(coefficientsOf(undula, setting, null).matrix.re, cost), best: sumOf(matrix.re, cost) },
  };
}

function compare(undula, { setting, basis }, report) {
  return SHARES.map((share, i) => {
    report(i / SHARES.length, 'Comparing the two bases');
    const [wavelet, best] = [null, basis].map((each) => rebuiltFrom(undula, setting, each, share));
    return { share, wanted: wavelet.wanted, wavelet: wavelet.psnr, best: best.psnr };
  });
}

export const jobs = { read, transform, rebuild, search, compare };
