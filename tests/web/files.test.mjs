// The readers of the page in the browser: node --test tests/web
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { readCsv, textOf } from '../../web/page/csv.js';
import { isWav, readWav } from '../../web/page/wav.js';

const COUNT = 8;
const ramp = [0, 0.5, -1.25, 3, 4, 5, 6, 700];
const lines = (line, separator = '\n') => ramp.map(line).join(separator);
const comma = (x) => String(x).replace('.', ',');

const texts = {
  'one column': [lines(String), { 'column 1': ramp }],
  'a name, comments, empty lines, Windows line ends': [`# made by hand\r\n"t, s"\r\n\r\n${lines(String, '\r\n')}\r\n`, { 't, s': ramp }],
  'commas, and a column of dates that is left out': [`day,a,b\n${lines((x, i) => `2020-01-0${i + 1},${x},${2 - x}`)}`,
    { a: ramp, b: ramp.map((x) => 2 - x) }],
  'tabs': [lines((x, i) => `${i}\t${x}`), { 'column 1': [0, 1, 2, 3, 4, 5, 6, 7], 'column 2': ramp }],
  'semicolons and decimal commas': [`a;b\n${lines((x, i) => `${comma(x)};${i},5`)}`,
    { a: ramp, b: [0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5] }],
  'spaces and decimal commas': [lines((x) => ` ${comma(x)}   1e1`), { 'column 1': ramp, 'column 2': Array(COUNT).fill(10) }],
  'a comma that is either': ['0,5\n1,25\n-2,5\n3,0\n4,0\n5,0\n6,0\n7,75', {
    'column 1': [0, 1, -2, 3, 4, 5, 6, 7], 'column 2': [5, 25, 5, 0, 0, 0, 0, 75],
    'numbers with decimal commas': [0.5, 1.25, -2.5, 3, 4, 5, 6, 7.75],
  }],
  'quoted decimal commas, and a minus of typesetters': [lines((x) => `"${comma(x)}"`).replace('-', '\u2212'), { 'column 1': ramp }],
  'one line of numbers': [`${ramp.join(',')}\n`, { 'the line': ramp }],
};

for (const [name, [text, expected]] of Object.entries(texts)) {
  test(`CSV: ${name}`, () => {
    const found = readCsv(text).columns.map((column) => [column.name, [...column.samples]]);
    assert.deepEqual(Object.fromEntries(found), expected);
  });
}

// What the page shows first: of which column, over what time, and with which words.
const choices = [
  [lines(String), 0, null, ''],
  [`t,v\n${lines((x, i) => `${3 + i / 4},${x}`)}`, 1, [3, 0.25, 't'], ''],
  [lines((x, i) => `${[0, 3, 6, 8, 11, 14, 17, 19][i]} ${x}`), 1, [0, 19 / 7, 'column 1'], ''],
  [lines((x, i) => `${7 - i} ${x}`), 1, null, ''],
  [lines((x, i) => `${i * i} ${x}`), 1, null, ''],
  [lines((x, i) => `${i} ${i * i}`), 1, [0, 1, 'column 1'], ''],
  [`v;t\n${lines((x, i) => `${x};${i}`)}`, 0, null, ''],
  [`t,u,v\n${lines((x, i) => `${i},${i === 4 ? '' : x},${x}`)}`, 1, [0, 1, 't'], '“u” was left out: line 6 has no number.'],
  [`x\n\n${lines(String).replaceAll('\n5', '\n\n\n5')}\n\n\n`, 0, null, '2 blank lines were left out.'],
  [lines((x) => `"${comma(x)}"`), 0, null, 'Commas within numbers were read as decimal commas.'],
];

test('CSV: the first signal, its time, and what is told of it', () => {
  for (const [text, wanted, time, note] of choices) {
    const { columns, first, note: told } = readCsv(text);
    const { axis } = columns[first];
    assert.deepEqual([first, axis && [axis.start, axis.step, axis.unit], told], [wanted, time, note]);
  }
});

test('CSV: texts of UTF-16', () => {
  const little = Buffer.from(`\uFEFF${lines(String)}`, 'utf16le');
  for (const bytes of [little, Buffer.from(little).swap16()]) {
    assert.deepEqual([...readCsv(textOf(Uint8Array.from(bytes).buffer)).columns[0].samples], ramp);
  }
});

test('CSV: faults are told with their place', () => {
  const faults = {
    '': /empty/, '\n\n': /empty/, 'hello': /line 1 holds “hello”/, '1\n2\n3': /only 3 numbers/,
    [lines(String).replace('-1.25', 'NaN')]: /line 3 holds NaN/,
    [lines(String).replace('-1.25', '1e999')]: /line 3 holds “1e999”/,
    [`1,2\n1,2\n1\n${lines((x) => `${x},1`)}`]: /Line 3 has 1 field,/,
    [`t,v\n${lines((x, i) => `${i},${i === 4 ? '' : x}`)}`]: /Only “t” holds.*“v” was left out: line 6 has no number/,
    'PK\u0003\0\0': /neither/,
    [`${'1\n'.repeat(2 ** 22 + 2)}`]: /4\u2009194\u2009304 samples at most/,
  };
  for (const [text, sentence] of Object.entries(faults)) {
    assert.throws(() => readCsv(text), { name: 'FileFault', message: sentence });
  }
});

// ---- WAV

const bytesOf = (...parts) => Buffer.concat(parts.map((part) => (typeof part === 'string' ? Buffer.from(part, 'latin1') : part)));
const u16 = (...values) => Buffer.from(values.flatMap((value) => [value & 255, value >> 8]));
const u32 = (value) => u16(value & 65535, value >>> 16);
const chunk = (name, content) => bytesOf(name, u32(content.length), content, content.length % 2 ? Buffer.alloc(1) : '');

function wav(kind, bits, channels, data, extra = Buffer.alloc(0)) {
  const block = (channels * bits) / 8;
  const format = bytesOf(u16(kind, channels), u32(8000), u32(8000 * block), u16(block, bits), extra);
  const content = bytesOf('WAVE', chunk('fmt ', format), chunk('LIST', Buffer.from('odd')), chunk('data', data));
  return bytesOf('RIFF', u32(content.length), content);
}

const read = (file) => readWav(file.buffer.slice(file.byteOffset, file.byteOffset + file.length));
const repeated = (...bytes) => Buffer.from(Array(COUNT / 4).fill(bytes).flat());
const doubled = (...numbers) => [...numbers, ...numbers];

// Half, the least, zero, and one step above zero, twice.
const kinds = {
  'PCM 8': [1, 8, repeated(192, 0, 128, 129), doubled(0.5, -1, 0, 1 / 128)],
  'PCM 16': [1, 16, repeated(0, 0x40, 0, 0x80, 0, 0, 1, 0), doubled(0.5, -1, 0, 1 / 32768)],
  'PCM 24': [1, 24, repeated(0, 0, 0x40, 0, 0, 0x80, 0, 0, 0, 1, 0, 0), doubled(0.5, -1, 0, 2 ** -23)],
  'PCM 32': [1, 32, repeated(0, 0, 0, 0x40, 0, 0, 0, 0x80, 0, 0, 0, 0, 1, 0, 0, 0), doubled(0.5, -1, 0, 2 ** -31)],
  'float 32': [3, 32, Buffer.from(Float32Array.from(doubled(0.5, -1, 0, 3)).buffer), doubled(0.5, -1, 0, 3)],
  'float 64': [3, 64, Buffer.from(Float64Array.from(doubled(0.1, -1, 0, 1e300)).buffer), doubled(0.1, -1, 0, 1e300)],
};

for (const [name, [kind, bits, data, expected]] of Object.entries(kinds)) {
  test(`WAV: ${name}`, () => {
    const { rate, columns } = read(wav(kind, bits, 1, data));
    assert.equal(rate, 8000);
    assert.deepEqual(columns.map((column) => [...column.samples]), [expected]);
  });
}

test('WAV: channels, and the longer form of the format', () => {
  const guid = bytesOf(u16(22, 16), u32(3), u16(1, 0), Buffer.alloc(14));
  const data = Buffer.from(Array.from({ length: COUNT }, () => [0, 0x40, 0, 0xc0]).flat());
  const { columns } = read(wav(0xfffe, 16, 2, data, guid));
  assert.deepEqual(columns.map(({ name, samples }) => [name, samples[0], samples.length]),
    [['mean of all channels', 0, COUNT], ['left', 0.5, COUNT], ['right', -0.5, COUNT]]);
});

test('WAV: faults', () => {
  const whole = wav(1, 16, 1, Buffer.alloc(64));
  const changed = (at, byte) => {
    const copy = Buffer.from(whole);
    copy[at] = byte;
    return copy;
  };
  const faults = [
    [whole.subarray(0, 20), /how its samples are written/], [whole.subarray(0, 60), /in the middle/],
    [whole.subarray(0, 48), /no samples/], [changed(20, 2), /compressed/], [changed(34, 12), /of 12 bits/],
    [changed(22, 0), /do not fit together/], [wav(1, 16, 1, Buffer.alloc(2)), /only one number/],
    [wav(3, 32, 1, Buffer.alloc(64, 0xff)), /holds NaN as sample 1/],
  ];
  for (const [file, sentence] of faults) assert.throws(() => read(file), { name: 'FileFault', message: sentence });
  assert.equal(isWav(new Uint8Array(whole).buffer), true);
  assert.equal(isWav(new TextEncoder().encode('RIFF, and a text').buffer), false);
});
