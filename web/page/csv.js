// Numbers out of a text of separated values.
//
//   readCsv(text) -> { columns: [{ name, samples: Float64Array }], note }
//
// Fields are separated by semicolons, tabs, commas or spaces. Beside semicolons, tabs and spaces, a comma within a
// number is a decimal one. Where a comma might be either, as in "0,5", the columns and the numbers with decimal
// commas are all returned, for the reader of the page to choose from. A line of names may come first; empty lines and
// those that begin with # do not count. Columns that do not hold numbers only are left out, which `note` tells.
// One line of many numbers is a signal too. Throws a FileFault.

import { checkCount, fault, tooLong, MOST_SAMPLES } from './files.js';

const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;
const COMMA_NUMBER = /^[+-]?(\d+,?\d*|,\d+)([eE][+-]?\d+)?$/;
const NOT_FINITE = /^[+-]?(nan|inf|infinity|na|null|1\.#\w+)$/i;

const plain = { test: (field) => NUMBER.test(field), value: Number };
const withCommas = {
  test: (field) => COMMA_NUMBER.test(field) || NUMBER.test(field),
  value: (field) => Number(field.replace(',', '.')),
};

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

// With the numbers that they have in the file.
function linesOf(text) {
  const lines = [];
  text.replace(/^\uFEFF/, '').split(/\r\n|\r|\n/).forEach((line, i) => {
    if (line.trim() && !line.startsWith('#')) lines.push({ line, number: i + 1 });
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
function hasNames(lines, separator, { test }) {
  const first = fieldsOf(lines[0].line, separator);
  if (first.some((field) => test(field) || NOT_FINITE.test(field))) return false;
  return lines.length > 1 && fieldsOf(lines[1].line, separator).length === first.length;
}

function whyNot(field, number) {
  if (!field) return `line ${number} has no number`;
  if (NOT_FINITE.test(field)) return `line ${number} holds ${field}`;
  return `line ${number} holds “${field.length > 20 ? `${field.slice(0, 20)}…` : field}”`;
}

function valueOf(column, field, number, { test, value }) {
  const result = test(field) ? value(field) : NaN;
  if (Number.isFinite(result)) return result;
  column.reason = column.reason ?? whyNot(field, number);
  return 0;
}

function parsed(lines, separator, numbers) {
  const named = hasNames(lines, separator, numbers);
  const body = named ? lines.slice(1) : lines;
  const names = fieldsOf(lines[0].line, separator);
  const columns = names.map((name, i) =>
    ({ name: named && name ? name : `column ${i + 1}`, samples: new Float64Array(body.length), reason: null }));
  body.forEach(({ line, number }, row) => {
    const fields = fieldsOf(line, separator);
    if (fields.length !== columns.length) {
      throw fault(`Line ${number} has ${fields.length} fields, and the first line has ${columns.length}.`);
    }
    columns.forEach((column, i) => { column.samples[row] = valueOf(column, fields[i], number, numbers); });
  });
  return columns;
}

const isLine = (columns) => columns.length > 7 && columns[0].samples.length === 1;

function asOneColumn(columns) {
  const { reason } = columns.find((column) => column.reason) ?? { reason: null };
  return [{ name: 'the line', samples: Float64Array.from(columns, ({ samples }) => samples[0]), reason }];
}

// Numbers such as "0,5" all the way down, which may as well be two columns.
function decimalCommas(lines) {
  if (!lines.every(({ line }) => /^\s*[+-]?\d+,\d+\s*$/.test(line))) return [];
  const samples = Float64Array.from(lines, ({ line }) => withCommas.value(line));
  return [{ name: 'numbers with decimal commas', samples, reason: null }];
}

function noteOf(left) {
  if (left.length === 0) return '';
  return `Left out: ${left.map(({ name, reason }) => `${name} (${reason})`).join(', ')}.`;
}

export function readCsv(text) {
  if (text.includes('\0')) throw fault('This file is neither a text of numbers nor a WAV file.');
  const lines = linesOf(text);
  if (lines.length === 0) throw fault('The file is empty.');
  if (lines.length > MOST_SAMPLES + 1) throw tooLong(`The file has ${lines.length} lines`);
  const separator = separatorOf(lines.slice(0, 20));
  const all = parsed(lines, separator, separator === ',' ? plain : withCommas);
  const columns = isLine(all) ? asOneColumn(all) : all;
  const usable = [...columns.filter(({ reason }) => !reason), ...(separator === ',' ? decimalCommas(lines) : [])];
  if (usable.length === 0) {
    throw fault(`No column of the file holds finite numbers only: ${columns[0].reason}.`);
  }
  checkCount(usable[0].samples.length);
  return {
    columns: usable.map(({ name, samples }) => ({ name, samples })),
    note: noteOf(columns.filter(({ reason }) => reason)),
  };
}
