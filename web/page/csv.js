// Numbers out of a text of separated values.
//
//   textOf(buffer)       the text of a file, which is UTF-8, or UTF-16 if it begins with a mark of that
//   readCsv(text) -> { columns: [{ name, samples: Float64Array, axis }], first, note }
//
// Fields are separated by semicolons, tabs, commas or spaces. Beside semicolons, tabs and spaces, a comma within a
// number is a decimal one. Where a comma might be either, as in "0,5", the columns and the numbers with decimal
// commas are all returned, for the reader of the page to choose from. A line of names may come first; empty lines and
// those that begin with # do not count. Columns that do not hold numbers only are left out, which `note` tells.
// One line of many numbers is a signal too. Throws a FileFault.
//
// A first column that rises evenly is the time of the others: their `axis` is { start, step, unit, perUnit }, else
// null. `first` is the first column that may be a signal, which one that only rises or only falls hardly is.

import { checkCount, fault, grouped, tooLong, MOST_SAMPLES } from './files.js';

const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;
const COMMA_NUMBER = /^[+-]?(\d+,?\d*|,\d+)([eE][+-]?\d+)?$/;
const NOT_FINITE = /^[+-]?(nan|inf|infinity|na|null|1\.#\w+)$/i;

const isNumber = (field) => NUMBER.test(field) || COMMA_NUMBER.test(field);
const numberOf = (field) => Number(field.replace(',', '.'));

const trimmed = (field) => field.trim().replace(/^"(.*)"$/, '$1').trim();

function splitQuoted(line, separator) {
  const fields = [''];
  let quoted = false;
  for (const letter of line) {
    if (letter === '"') quoted = !quoted;
    if (letter === separator && !quoted) fields.push('');
    else fields[fields.length - 1] += letter;
  }
  return fields;
}

function fieldsOf(line, separator) {
  if (separator === ' ') return line.trim().split(/\s+/).map(trimmed);
  return (line.includes('"') ? splitQuoted(line, separator) : line.split(separator)).map(trimmed);
}

export function textOf(buffer) {
  const encoding = { '255,254': 'utf-16le', '254,255': 'utf-16be' }[new Uint8Array(buffer.slice(0, 2))];
  return new TextDecoder(encoding ?? 'utf-8').decode(buffer);
}

// With the numbers that they have in the file, and how many blank lines precede them.
function linesOf(text) {
  const lines = [];
  let blanks = 0;
  text.replace(/^\uFEFF/, '').replaceAll('\u2212', '-').split(/\r\n|\r|\n/).forEach((line, i) => {
    if (!line.trim()) blanks += 1;
    else if (!line.startsWith('#')) {
      lines.push({ line, number: i + 1, blanks });
      blanks = 0;
    }
  });
  return lines;
}

function separatorOf(sample) {
  const has = (letter) => sample.some(({ line }) => line.includes(letter));
  if (has(';')) return ';';
  if (has('\t')) return '\t';
  if (!has(',')) return ' ';
  // Numbers with decimal commas, apart by spaces.
  const last = sample[sample.length - 1].line;
  const isSpaced = /\s/.test(last.trim()) && fieldsOf(last, ' ').every((field) => COMMA_NUMBER.test(field));
  return isSpaced ? ' ' : ',';
}

// A line without any number, above one that has some, is a line of names.
function hasNames(lines, separator) {
  const first = fieldsOf(lines[0].line, separator);
  if (first.some((field) => isNumber(field) || NOT_FINITE.test(field))) return false;
  return lines.length > 1 && fieldsOf(lines[1].line, separator).length === first.length;
}

function whyNot(field, number) {
  if (!field) return `line ${number} has no number`;
  if (NOT_FINITE.test(field)) return `line ${number} holds ${field}`;
  return `line ${number} holds “${field.length > 20 ? `${field.slice(0, 20)}…` : field}”`;
}

function valueOf(column, field, number) {
  const result = isNumber(field) ? numberOf(field) : NaN;
  if (Number.isFinite(result)) return result;
  column.reason = column.reason ?? whyNot(field, number);
  return 0;
}

const plural = (count, word) => `${count} ${word}${count === 1 ? '' : 's'}`;

function parsed(lines, separator) {
  const named = hasNames(lines, separator);
  const body = named ? lines.slice(1) : lines;
  const names = fieldsOf(lines[0].line, separator);
  const columns = names.map((name, i) =>
    ({ name: named && name ? name : `column ${i + 1}`, samples: new Float64Array(body.length), reason: null }));
  body.forEach(({ line, number }, row) => {
    const fields = fieldsOf(line, separator);
    if (fields.length !== columns.length) {
      throw fault(`Line ${number} has ${plural(fields.length, 'field')}, and the first line has ${columns.length}.`);
    }
    columns.forEach((column, i) => { column.samples[row] = valueOf(column, fields[i], number); });
  });
  return { columns, body };
}

const isLine = (columns) => columns.length > 7 && columns[0].samples.length === 1;

function asOneColumn(columns) {
  const { reason } = columns.find((column) => column.reason) ?? { reason: null };
  return [{ name: 'the line', samples: Float64Array.from(columns, ({ samples }) => samples[0]), reason }];
}

// Numbers such as "0,5" all the way down, which may as well be two columns.
function decimalCommas(lines) {
  if (!lines.every(({ line }) => /^\s*[+-]?\d+,\d+\s*$/.test(line))) return [];
  const samples = Float64Array.from(lines, ({ line }) => numberOf(line));
  return [{ name: 'numbers with decimal commas', samples, reason: null }];
}

// ---- Time

// Within half a step, as rounded numbers are.
function isEven(samples) {
  const step = (samples[samples.length - 1] - samples[0]) / (samples.length - 1);
  return step !== 0 && samples.every((x, i) => Math.abs(x - samples[0] - i * step) <= Math.abs(step) / 2);
}

function isMonotone(samples) {
  const sign = Math.sign(samples[samples.length - 1] - samples[0]);
  return sign !== 0 && samples.every((x, i) => i === 0 || sign * (x - samples[i - 1]) >= 0);
}

function axisOf({ name, samples, reason }) {
  const last = samples.length - 1;
  if (reason || samples[last] < samples[0] || !isEven(samples)) return null;
  const step = (samples[last] - samples[0]) / last;
  return { start: samples[0], step, unit: name, perUnit: 'cycles per unit' };
}

function firstSignal(columns) {
  const found = columns.findIndex(({ samples }) => !isMonotone(samples));
  return found < 0 ? columns.length - 1 : found;
}

// ---- What the reader of the page is told

const leftOut = (columns) =>
  columns.filter(({ reason }) => reason).map(({ name, reason }) => `“${name}” was left out: ${reason}.`);

function checkUsable(columns, usable) {
  if (usable.length === 0) throw fault(`No column of the file holds finite numbers only: ${columns[0].reason}.`);
  checkCount(usable[0].samples.length);
  if (usable.length === 1 && columns.length > 1 && isEven(usable[0].samples)) {
    throw fault(`Only “${usable[0].name}” holds finite numbers throughout, and it is even as a time. ` +
      leftOut(columns).join(' '));
  }
}

function noteOf(columns, body, separator) {
  const blanks = columns.length > 1 ? 0 : body.slice(1).reduce((sum, line) => sum + line.blanks, 0);
  const hasComma = (field) => field.includes(',') && isNumber(field);
  const hasCommas = separator === ',' &&
    body.some(({ line }) => line.includes('"') && fieldsOf(line, separator).some(hasComma));
  return [
    ...leftOut(columns),
    ...(blanks ? [`${plural(blanks, 'blank line')} ${blanks === 1 ? 'was' : 'were'} left out.`] : []),
    ...(hasCommas ? ['Commas within numbers were read as decimal commas.'] : []),
  ].join(' ');
}

export function readCsv(text) {
  if (text.includes('\0')) throw fault('This file is neither a text of numbers nor a WAV file.');
  const lines = linesOf(text);
  if (lines.length === 0) throw fault('The file is empty.');
  if (lines.length > MOST_SAMPLES + 1) throw tooLong(`The file has ${grouped(lines.length)} lines`);
  const separator = separatorOf(lines.slice(0, 20));
  const { columns: all, body } = parsed(lines, separator);
  const columns = isLine(all) ? asOneColumn(all) : all;
  const alone = separator === ',' ? decimalCommas(lines) : [];
  const usable = [...columns.filter(({ reason }) => !reason), ...alone];
  checkUsable(columns, usable);
  const axis = axisOf(columns[0]);
  const hasAxis = (column) => column !== columns[0] && !alone.includes(column);
  return {
    columns: usable.map((column) =>
      ({ name: column.name, samples: column.samples, axis: hasAxis(column) ? axis : null })),
    first: firstSignal(usable),
    note: noteOf(columns, body, separator),
  };
}
