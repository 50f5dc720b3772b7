// What the panel "An image" computes in the worker.

export const jobs = {};
