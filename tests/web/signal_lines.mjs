// What the panel "A signal" computes and the lines of Python that shall give it, for signal_lines.py, as JSON.
//
//   node signal_lines.mjs FOLDER_OF_THE_PAGE | python3 signal_lines.py

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const page = path.resolve(process.argv[2]);
const load = (name) => import(pathToFileURL(path.join(page, name)));
const { loadUndula } = await load('undula.js');
const { jobs } = await load('signal_jobs.js');
const { linesOf } = await load('signal_code.js');
const { readCsv } = await load('csv.js');
const { wavelets } = await load('wavelets.js');

const undula = await loadUndula(readFileSync(path.join(page, 'undula.wasm')));
const report = Object.assign(() => {}, { transfer() {} });
const plain = (_, value) => (ArrayBuffer.isView(value) ? Array.from(value) : value);

// Decibels and counts of data whose squares leave double precision are those of the data times a power of two.
function checkScaled(choice) {
  const told = [0, 600, -600].map((power, i) => {
    const samples = choice.samples.map((x) => x * 2 ** power);
    const scaled = { ...choice, key: `${choice.key} ${i}`, samples, threshold: choice.threshold * 2 ** power, cost: 'l1' };
    const { toData, kept } = jobs.denoise(undula, scaled, report);
    if (power) assert.throws(() => jobs.packets(undula, { ...scaled, cost: 'shannon' }, report), /too (large|small) for this cost/);
    return { toData, kept, counts: jobs.packets(undula, scaled, report).rows.map(({ count }) => count) };
  });
  for (const each of told) assert.deepEqual(each, told[0]);
}

const choices = [
  ['ecg.csv', 'daublet8', 'periodic', 'extend', 5, 6, 'shannon', 'soft', 0.04],
  ['sunspots.csv', 'symmlet8', 'periodic', 'extend', 4, 5, 'l1', 'hard', 21],
  ['sunspots.csv', 'symmlet8', 'periodic', 'cut', 4, 5, 'log_energy', 'soft', 21],
  ['sunspots.csv', 'Bspline24', 'symmetric', 'extend', 5, 6, 'shannon', 'soft', 12.5],
  ['nino3.csv', 'symmlet10', 'interval', 'extend', 5, 5, 'count_above', 'soft', 0.7],
];
choices.forEach(([file, name, boundary, way, level, depth, cost, shrink, threshold], key) => {
  const [{ samples }] = readCsv(readFileSync(path.join(page, 'data', file), 'utf8')).columns;
  const wavelet = wavelets.find((each) => each.name === name);
  const choice = { key, samples, clean: samples, wavelet, boundary, way, level, depth, cost, shrink, threshold };
  const results = { ...jobs.denoise(undula, choice, report), packets: jobs.packets(undula, choice, report) };
  const lines = linesOf({ ...choice, file, count: samples.length }).python;
  checkScaled({ ...choice, clean: null });
  console.log(JSON.stringify({ name, ...results, lines }, plain));
});
