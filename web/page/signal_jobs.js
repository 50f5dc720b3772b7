// What the panel "A signal" computes in the worker.
//
// The worker keeps the samples and the coefficients of the signal that was asked for last. Where they are gone,
// because a computation was cancelled, the job fails with an error of the name 'Gone', and the page sends the
// samples again (signal_calls.js).

import { realFunction } from './undula.js';
import { checkCosts, costOf } from './costs.js';
import { isWav, readWav } from './wav.js';
import { readCsv, textOf } from './csv.js';
import { fitted, fittedLength } from './lengths.js';
import { scaleOf } from './signal_scale.js';

const LETTERS = { periodic: '', symmetric: 's', interval: 'i' };
const POOLED = 1024;   // columns of the picture of a packet table
const ENERGY = 0.99;   // of which the comparison counts the coefficients
const ROUNDING = 1e-10;  // of transforms, as of taps with eleven digits, relative to the largest sample
const MOST = 1.797e308;  // the largest number of four digits
const REPORT_EVERY = 2 ** 18;  // calls of the cost

let signal = { key: null, samples: null, clean: null };
let levels = { key: null };

function opened({ key, samples, clean }) {
  if (samples) {
    signal = { key, samples, clean };
    levels = { key: null };
  }
  if (signal.key !== key) throw Object.assign(new Error('The samples are gone.'), { name: 'Gone' });
  return signal;
}

const filterOf = (undula, { function: name, arguments: orders }) => undula.call(name, orders);

// A page in the browser sees no fault of the arithmetic but by its results.
function checkFinite(numbers, what) {
  if (numbers.every(Number.isFinite)) return;
  throw new Error(`${what} are not finite though the samples are: their values are too large for this computation.`);
}

// ---- Levels and threshold

function transformed(undula, parameters) {
  const { key, wavelet, boundary, level, way } = parameters;
  const { samples } = opened(parameters);
  const wanted = JSON.stringify([key, wavelet, boundary, level, way]);
  if (levels.key === wanted) return levels;
  const filter = filterOf(undula, wavelet);
  const length = fittedLength(samples.length, level, boundary, way);
  const coefficients = undula.call(`dwt${LETTERS[boundary]}`, [fitted(samples, length), level, filter]).re;
  checkFinite(coefficients, 'The coefficients');
  const sizes = partSizes(length, level);
  levels = { key: wanted, filter, coefficients, sizes, ...noiseOf(coefficients, sizes, samples.length) };
  return levels;
}

// Of the smooth part, then of the details, coarse to fine.
function partSizes(length, level) {
  const details = [];
  let smooth = length;
  for (let j = 0; j < level; j += 1) {
    details.unshift(Math.floor(smooth / 2));
    smooth = Math.ceil(smooth / 2);
  }
  return [smooth, ...details];
}

// The largest detail, and the threshold that noise alone hardly exceeds; the finest details tell its strength.
function noiseOf(coefficients, sizes, count) {
  const finest = coefficients.slice(coefficients.length - sizes[sizes.length - 1]).map(Math.abs).sort();
  const middle = finest.length >> 1;
  const median = finest.length % 2 ? finest[middle] : finest[middle - 1] / 2 + finest[middle] / 2;
  let largest = 0;
  for (let i = sizes[0]; i < coefficients.length; i += 1) largest = Math.max(largest, Math.abs(coefficients[i]));
  return { largest, universal: Math.min(MOST, (median / 0.6744897501960817) * Math.sqrt(2 * Math.log(count))) };
}

const soft = (x, t) => (x > t ? x - t : x < -t ? x + t : 0);
const hard = (x, t) => (Math.abs(x) < t ? 0 : x);

function shrunk({ coefficients, sizes }, threshold, shrink) {
  const result = coefficients.slice();
  const change = shrink === 'soft' ? soft : hard;
  for (let i = sizes[0]; i < result.length; i += 1) result[i] = change(result[i], threshold);
  return result;
}

function decibels(reference, other, count) {
  const scale = scaleOf(reference);
  let mean = 0, energy = 0, error = 0;
  for (let i = 0; i < count; i += 1) mean += (scale * reference[i]) / count;
  for (let i = 0; i < count; i += 1) {
    energy += (scale * reference[i] - mean) ** 2;
    error += (scale * other[i] - scale * reference[i]) ** 2;
  }
  return error <= count * ROUNDING ** 2 ? Infinity : 10 * Math.log10(energy / error);
}

// The coefficients, once for each transform.
function coefficients(undula, parameters) {
  const { coefficients: all, sizes, largest, universal } = transformed(undula, parameters);
  return { coefficients: all, sizes, largest, universal };
}

// The reconstruction, at each step of the slider.
function denoise(undula, parameters, report) {
  const { threshold, shrink, boundary, level } = parameters;
  const made = transformed(undula, parameters);
  const { samples, clean } = signal;
  const changed = shrunk(made, threshold, shrink);
  const restored = undula.call(`idwt${LETTERS[boundary]}`, [changed, level, made.filter]).re;
  checkFinite(restored, 'The restored samples');
  const count = Math.min(restored.length, samples.length);
  const shown = new Float64Array(samples.length).fill(NaN);
  shown.set(restored.subarray(0, count));
  report.transfer(shown.buffer);
  return {
    restored: shown,
    kept: changed.reduce((sum, x) => sum + (x !== 0), 0),
    of: changed.length,
    toData: decibels(samples, restored, count),
    toClean: clean && decibels(clean, restored, count),
    before: clean && decibels(clean, samples, count),
  };
}

// ---- Packets

// The cost as the pack calls it, which tells how many of the calls have been made.
function counted(cost, total, report) {
  let calls = 0;
  return realFunction((x) => {
    calls += 1;
    if (calls % REPORT_EVERY === 0) report(calls / total);
    return cost(x);
  });
}

// The greatest magnitude of each column of the picture, level by level, as a multiple of what suits single precision.
function pooled(table) {
  const scale = scaleOf(table[0].re);
  const columns = Math.min(POOLED, table[0].re.length);
  const result = new Float32Array(columns * table.length);
  table.forEach(({ re }, level) => re.forEach((x, i) => {
    const place = level * columns + Math.floor((i * columns) / re.length);
    result[place] = Math.max(result[place], scale * Math.abs(x));
  }));
  return { columns, magnitudes: result };
}

function countFor(numbers, share) {
  const scale = scaleOf(numbers);
  const energies = numbers.map((x) => (scale * x) ** 2).sort();
  const wanted = share * energies.reduce((sum, x) => sum + x, 0);
  let sum = 0, count = 0;
  while (sum < wanted && count < energies.length) {
    count += 1;
    sum += energies[energies.length - count];
  }
  return count;
}

const sumOf = (numbers, cost) => numbers.reduce((sum, x) => sum + cost(x), 0);

function rowsOf({ rows, re }) {
  return Array.from({ length: rows }, (_, i) => [re[i], re[rows + i]]);
}

function judged(name, packets, numbers, cost) {
  return { name, packets, cost: sumOf(numbers, cost), count: countFor(numbers, ENERGY), of: numbers.length };
}

function searched(undula, table, cost, report) {
  const total = table.length * table[0].re.length;
  const basis = undula.call('best_basis', [table, counted(cost, total, report)]);
  return { basis: rowsOf(basis), coefficients: undula.call('extract_basis', [table, basis]).re };
}

const part = (report, from, to, text) => (fraction) => report(from + (to - from) * fraction, text);

function packets(undula, parameters, report) {
  const { wavelet, boundary, depth, way, cost: name, threshold } = parameters;
  const { samples } = opened(parameters);
  const cost = costOf(name, threshold);
  const length = fittedLength(samples.length, depth, boundary, way);
  report(0, 'Splitting into packets');
  const table = undula.call(`wpt${LETTERS[boundary]}`, [fitted(samples, length), depth, filterOf(undula, wavelet)]);
  table.forEach(({ re }) => checkFinite(re, 'The packets'));
  const found = searched(undula, table, cost, part(report, 0.1, 0.5, 'Searching the best packets'));
  const wavelets = undula.call('extract_basis', [table, undula.call('wavebs', [depth, 1])]).re;
  const result = {
    ...found, length, table: pooled(table),
    rows: [
      judged('samples', 1, table[0].re, cost),
      judged('wavelets', depth + 1, wavelets, cost),
      judged('best packets', found.basis.length, found.coefficients, cost),
    ],
  };
  table.length = 0;
  const whole = { ...result, cosines: cosines(undula, samples, parameters, cost, report) };
  checkCosts(name, samples, [...whole.rows, whole.cosines.row].map((row) => row.cost));
  return whole;
}

function cosines(undula, samples, { depth, way }, cost, report) {
  const length = fittedLength(samples.length, depth + 1, 'periodic', way);
  report(0.5, 'Splitting into cosine packets');
  const table = undula.call('cpt', [fitted(samples, length), depth]);
  table.forEach(({ re }) => checkFinite(re, 'The cosine packets'));
  const found = searched(undula, table, cost, part(report, 0.7, 1, 'Searching the best cosine packets'));
  return { ...found, length, row: judged('best cosines', found.basis.length, found.coefficients, cost) };
}

// ---- Files

function read(undula, { buffer }, report) {
  report(null, 'Reading the file');
  if (isWav(buffer)) return { note: '', first: 0, ...readWav(buffer) };
  return readCsv(textOf(buffer));
}

export const jobs = { coefficients, denoise, packets, read };
