// What the panel "A signal" computes and the lines of Python that shall give it, for signal_lines.py, as JSON.
//
//   node signal_lines.mjs FOLDER_OF_THE_PAGE | python3 signal_lines.py

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
  console.log(JSON.stringify({ name, ...results, lines }, plain));
});
