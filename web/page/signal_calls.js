// Calls of the panel's jobs, which have the samples sent to the worker where it does not have them yet, or any more.
//
//   const calls = callsOf(compute);
//   await calls(signal, 'denoise', parameters)       null where a newer call of the job has replaced this one

let keys = 0;
const keyOf = new WeakMap();

function keyFor(signal) {
  if (!keyOf.has(signal)) {
    keys += 1;
    keyOf.set(signal, keys);
  }
  return keyOf.get(signal);
}

export const callsOf = (compute) => async (signal, job, parameters) => {
  const call = (more) =>
    compute.latest(`signal.${job}`, `signal.${job}`, { ...parameters, key: keyFor(signal), ...more });
  try {
    return await call({});
  } catch (error) {
    if (error.name !== 'Gone') throw error;
    return call({ samples: signal.samples, clean: signal.clean });
  }
};
