// The same random calls through the module and the native library: equal bytes where the arithmetic is sums and
// products, nearly equal numbers where the C library computes sines and powers, and equal errors.
//
//   python3 compare_calls.py CALLS SEED | node compare_calls.mjs FOLDER_OF_THE_PAGE

import { readFileSync } from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const page = path.resolve(process.argv[2]);
const { loadUndula, Matrix } = await import(pathToFileURL(path.join(page, 'undula.js')));

const NEAR = new Set(['cpt', 'lct', 'icpt', 'ilct', 'bl']);
const UNIT = 2 ** -53;
const FAULTS = ['overflow', 'singularity', 'floating point error'];

const first = (value) => (value instanceof Matrix ? value.re[0] : value);
const mapped = (f) => (value) => (
  typeof value === 'number' ? f(value) : new Matrix(value.rows, value.cols, value.re.map(f)));
const FUNCTIONS = {
  '@abs': mapped(Math.abs),
  '@(p) 2 * p': mapped((x) => 2 * x),
  '@(p) p(1)': first,
  "@(p) 'text'": () => 'text',
  '@(p) p .* p': mapped((x) => x * x),
};

function numbers(hex) {
  const bytes = Buffer.from(hex, 'hex');
  return Float64Array.from({ length: bytes.length / 8 }, (_, i) => bytes.readDoubleBE(8 * i));
}

function decoded(value) {
  if ('text' in value) return value.text;
  if ('function' in value) return FUNCTIONS[value.function];
  if ('table' in value) return value.table.map(decoded);
  const [re, im] = [numbers(value.re), value.im && numbers(value.im)];
  if (!value.scalar) return new Matrix(value.rows, value.cols, re, im);
  return im ? { re: re[0], im: im[0] } : re[0];
}

// A value as a shape and its numbers.
function parts(value) {
  if (Array.isArray(value)) {
    const cells = value.map(parts);
    return { shape: `table of ${cells.map(({ shape }) => shape)}`, numbers: cells.flatMap((cell) => cell.numbers) };
  }
  if (value instanceof Matrix) {
    const shape = value.re.length === 0 ? 'nothing' : `${value.rows} x ${value.cols}`;
    return { shape, numbers: [...value.re, ...(value.im ?? new Float64Array(value.re.length))] };
  }
  if (typeof value === 'number') return { shape: 'number', numbers: [value, 0] };
  return typeof value === 'string' ? { shape: value, numbers: [] } : { shape: 'number', numbers: [value.re, value.im] };
}

const isSame = (x, y) => Object.is(x, y) || (Number.isNaN(x) && Number.isNaN(y));

// Of which the C library decides the last digits: 4 units of the largest value, which is about 1 for the functions
// of a filter that is computed.
function tolerance(name, values, expected) {
  if (values.includes('bl3')) return 4 * UNIT;
  if (!NEAR.has(name)) return 0;
  return 4 * UNIT * Math.max(...expected.map(Math.abs).filter(Number.isFinite), 0);
}

function areAlike(name, values, got, expected) {
  const [a, b] = [parts(got), parts(expected)];
  if (a.shape !== b.shape || a.numbers.length !== b.numbers.length) return false;
  const allowed = tolerance(name, values, b.numbers);
  return a.numbers.every((x, i) => isSame(x, b.numbers[i]) || Math.abs(x - b.numbers[i]) <= allowed);
}

const isFiniteValue = (value) => typeof value === 'function' || parts(value).numbers.every(Number.isFinite);

function result(undula, name, values) {
  try {
    return { value: undula.call(name, values) };
  } catch (error) {
    if (error.name !== 'UndulaError') throw error;
    return { error: error.reason, argument: error.argument };
  }
}

function isRight(name, values, got, expected) {
  if (!('error' in expected)) return !('error' in got) && areAlike(name, values, got.value, decoded(expected));
  if (FAULTS.includes(expected.error)) return 'error' in got || !values.every(isFiniteValue);
  return got.error === expected.error && got.argument === expected.argument;
}

const undula = await loadUndula(readFileSync(path.join(page, 'undula.wasm')));
const calls = JSON.parse(readFileSync(0, 'utf8'));
const wrong = [];
for (const { name, arguments: given, expected } of calls) {
  const values = given.map(decoded);
  const got = result(undula, name, values);
  if (!isRight(name, values, got, expected)) wrong.push({ name, given, got, expected });
}
for (const each of wrong.slice(0, 10)) console.log(JSON.stringify(each));
const errors = calls.filter(({ expected }) => 'error' in expected);
const faults = errors.filter(({ expected }) => FAULTS.includes(expected.error));
console.log(`${calls.length} calls, ${errors.length} of them errors, of which ${faults.length} of arithmetic: `
  + `${wrong.length} differ`);
process.exit(wrong.length > 0 || calls.length === 0 ? 1 : 0);
