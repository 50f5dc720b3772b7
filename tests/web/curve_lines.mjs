// The curves of the panel "A wavelet" and the lines of Python that shall give them, for curve_lines.py, as JSON.
//
//   node curve_lines.mjs FOLDER_OF_THE_PAGE | python3 curve_lines.py

import { readFileSync } from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const page = path.resolve(process.argv[2]);
const load = (name) => import(pathToFileURL(path.join(page, name)));
const { loadUndula } = await load('undula.js');
const { jobs } = await load('wavelet_jobs.js');
const { codeOf } = await load('wavelet_code.js');
const { wavelets } = await load('wavelets.js');

const NAMES = ['daublet2', 'daublet6', 'symmlet8', 'coiflet12', 'Bspline13', 'Bspline24', 'Bspline31', 'bl2'];
const undula = await loadUndula(readFileSync(path.join(page, 'undula.wasm')));

const plain = (key, value) => (ArrayBuffer.isView(value) ? Array.from(value) : value);
const choices = wavelets.filter(({ name }) => NAMES.includes(name)).flatMap((wavelet) =>
  wavelet.boundaries.flatMap((boundary) => [
    { wavelet, boundary, drawn: 'inverse', index: 0, side: 'left' },
    { wavelet, boundary, drawn: 'points', index: 6, side: 'right' },
  ]));
for (const choice of choices) {
  const results = Object.fromEntries(Object.entries(jobs).map(([name, job]) => [name, job(undula, choice, () => {})]));
  console.log(JSON.stringify({ ...choice, results, lines: codeOf(choice, results).python }, plain));
}
