// What calls through the module do where they cannot succeed.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import test from 'node:test';

const page = new URL('../../build/web/', import.meta.url);
const { loadUndula, Matrix, UndulaError } = await import(new URL('undula.js', page));
const undula = await loadUndula(readFileSync(new URL('undula.wasm', page)));

const haar = undula.call('daublet', [2]);
const ramp = Float64Array.of(1, 2, 3, 4);

const stillWorks = () => {
  const half = Math.SQRT1_2;
  const { re } = undula.call('dwt', [ramp, 1, haar]);
  [3 * half, 7 * half].forEach((expected, i) => assert.ok(Math.abs(re[i] - expected) < 1e-15));
};

test('an error names the argument at fault, or none', () => {
  const refused = (name, values, fields) => assert.throws(() => undula.call(name, values), { name: 'UndulaError', ...fields });
  refused('dwt', [ramp, 3, haar],
    { message: 'dwt: invalid level (argument 2: level)', reason: 'invalid level', argument: 2, argumentName: 'level' });
  refused('dwts', [ramp, 1], { reason: 'Wrong number of Arguments', argument: 0 });
  refused('nothing', [], { reason: 'no such function', argument: 0 });
  stillWorks();
});

test('arrays of other numbers are taken by their values', () => {
  const expected = undula.call('dwt', [ramp, 1, haar]);
  for (const data of [new Float32Array(ramp), new Int8Array(ramp), new Matrix(4, 1, [...ramp])]) {
    assert.deepEqual(undula.call('dwt', [data, 1, haar]), expected);
  }
});

test('arrays that do not fit into memory are refused, and all goes on', () => {
  assert.throws(() => undula.call('dwt', [new Float64Array(2 ** 28), 1, haar]), { reason: 'out of memory', argument: 0 });
  stillWorks();
});

test('what a user function throws comes out, also of a call within a call', () => {
  const table = undula.call('wpt', [ramp, 1, haar]);
  const own = new RangeError('of my own');
  assert.throws(() => undula.call('applytbl', [table, () => { throw own; }]), own);
  assert.throws(() => undula.call('applytbl', [table, (packet) => undula.call('dwt', [packet, 9, haar])]), UndulaError);
  const twice = undula.call('applytbl', [table, ({ rows, cols, re }) => (
    undula.call('dwt', [new Matrix(rows, cols, re.map((x) => 2 * x)), 0, haar]))]);
  assert.deepEqual([...twice[0].re], [2, 4, 6, 8]);
  stillWorks();
});

test('what is no value of the pack is refused before the call', () => {
  for (const value of [null, undefined, 1n, { re: 1 }, new DataView(new ArrayBuffer(8)), new BigInt64Array(4)]) {
    assert.throws(() => undula.call('dwt', [value, 1, haar]), TypeError);
  }
  for (const [rows, cols, count] of [[2, 2, 3], [-2, -2, 4], [0.5, 8, 4]]) {
    assert.throws(() => new Matrix(rows, cols, new Float64Array(count)), RangeError);
  }
  assert.throws(() => undula.call('daublet', 8), TypeError);
  stillWorks();
});
