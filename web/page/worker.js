// Runs the jobs, one after the other. See compute.js for the other side.
//
// A job is `(undula, parameters, report) => result`, possibly async. `report(fraction, text)` tells how far it
// is, with a fraction of null where that is unknown. Results are copied to the page, so a job may keep what it
// returns in a module variable; `report.transfer(buffer)` hands a buffer of the result over instead.

import { loadUndula } from './undula.js';
import { jobs as wavelet } from './wavelet_jobs.js';
import { jobs as signal } from './signal_jobs.js';
import { jobs as image } from './image_jobs.js';

const jobs = new Map();
for (const [panel, ofPanel] of Object.entries({ wavelet, signal, image })) {
  for (const [name, job] of Object.entries(ofPanel)) jobs.set(`${panel}.${name}`, job);
}

const ready = loadUndula(new URL('./undula.wasm', import.meta.url));
ready.catch(() => {}); // each job reports it
let queue = Promise.resolve();

function fieldsOf(error) {
  const { name, message, function: ofFunction, argument, argumentName, reason } = error;
  return { name, message: String(message), function: ofFunction, argument, argumentName, reason };
}

async function run({ id, name, parameters }) {
  const transfer = [];
  const report = (fraction, text = '') => postMessage({ id, kind: 'progress', fraction, text });
  report.transfer = (buffer) => transfer.push(buffer);
  try {
    const job = jobs.get(name);
    if (!job) throw new Error(`There is no job ${name}.`);
    const result = await job(await ready, parameters, report);
    postMessage({ id, kind: 'result', result }, transfer);
  } catch (error) {
    postMessage({ id, kind: 'error', error: fieldsOf(error) });
  }
}

onmessage = ({ data }) => {
  queue = queue.then(() => run(data));
};
