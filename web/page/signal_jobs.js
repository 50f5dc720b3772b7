// What the panel "A signal" computes in the worker.

export const jobs = {};
