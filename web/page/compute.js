// Jobs in the worker, as the page sees them.
//
//   await compute.run('wavelet.shape', parameters, { onProgress, transfer })
//       the job's result. Parameters and results are copied, so both sides keep theirs; `transfer` lists
//       buffers of the parameters that are handed over instead. A Matrix arrives as a plain record
//       { rows, cols, re, im }.
//   await compute.latest(key, name, parameters)
//       for sliders. Of the same key one job runs and one waits. One that waited and was replaced by a newer
//       one resolves to null: then there is nothing to draw. Results of a key arrive in order, also while a
//       newer job waits, so that the picture follows the hand.
//   compute.cancel()
//       ends the worker. What was outstanding rejects with an error of the name 'Cancelled' (see isCancelled);
//       the next job starts a new worker, which remembers nothing.
//
// An error of the pack arrives as an Error of the name 'UndulaError' with its fields function, argument
// (position, 0 for the call as a whole), argumentName and reason (the pack's words); its message has them all.

const QUIET = 150; // ms that a job may take before the page says that it is computing

export const isCancelled = (error) => error?.name === 'Cancelled';

const errorOf = (fields) => Object.assign(new Error(fields.message), fields);

// `onStatus` is called with { busy, fraction, text } whenever that changes; fraction is null while unknown.
export function createCompute(onStatus) {
  const outstanding = new Map();
  const series = new Map(); // key -> { waiting: null or the newest request }
  let worker = null;
  let lastId = 0;
  let quiet = 0;

  function settle(id) {
    const job = outstanding.get(id);
    outstanding.delete(id);
    if (outstanding.size === 0) {
      clearTimeout(quiet);
      quiet = 0;
      onStatus({ busy: false, fraction: null, text: '' });
    }
    return job;
  }

  function progress(job, fraction, text) {
    job.onProgress?.(fraction, text);
    job.progress = { fraction, text };
    if (!quiet) onStatus({ busy: true, fraction, text });
  }

  function receive({ data }) {
    const job = outstanding.get(data.id);
    if (!job) return;
    if (data.kind === 'progress') {
      progress(job, data.fraction, data.text);
    } else if (data.kind === 'result') {
      settle(data.id).resolve(data.result);
    } else {
      settle(data.id).reject(errorOf(data.error));
      if (data.error.name === 'RuntimeError') abandon('The computation ended in the middle. Please try again.');
    }
  }

  function end(error) {
    worker?.terminate();
    worker = null;
    for (const id of [...outstanding.keys()]) settle(id).reject(error);
  }

  const abandon = (message) => end(new Error(message));

  function started() {
    if (worker) return worker;
    worker = new Worker(new URL('./worker.js', import.meta.url), { type: 'module' });
    worker.onmessage = receive;
    worker.onerror = (event) => {
      event.preventDefault();
      abandon(`The part of the page that computes does not run${event.message ? `: ${event.message}` : ''}.`);
    };
    return worker;
  }

  function showWhenLong() {
    if (quiet || outstanding.size > 1) return;
    quiet = setTimeout(() => {
      quiet = 0;
      const first = outstanding.values().next().value;
      onStatus({ busy: true, fraction: null, text: '', ...first?.progress });
    }, QUIET);
  }

  function run(name, parameters, { onProgress, transfer = [] } = {}) {
    lastId += 1;
    const id = lastId;
    return new Promise((resolve, reject) => {
      started().postMessage({ id, name, parameters }, transfer);
      outstanding.set(id, { resolve, reject, onProgress });
      showWhenLong();
    });
  }

  function next(key) {
    const request = series.get(key).waiting;
    series.get(key).waiting = null;
    if (!request) {
      series.delete(key);
      return;
    }
    run(request.name, request.parameters)
      .then(request.resolve, request.reject)
      .finally(() => next(key));
  }

  function latest(key, name, parameters) {
    return new Promise((resolve, reject) => {
      const running = series.has(key);
      if (!running) series.set(key, { waiting: null });
      series.get(key).waiting?.resolve(null);
      series.get(key).waiting = { name, parameters, resolve, reject };
      if (!running) next(key);
    });
  }

  function cancel() {
    const error = Object.assign(new Error('The computation was cancelled.'), { name: 'Cancelled' });
    for (const request of series.values()) {
      request.waiting?.reject(error);
      request.waiting = null;
    }
    end(error);
  }

  return { run, latest, cancel, warmUp: started };
}
