// What the readers of files have in common.

export const MOST_SAMPLES = 2 ** 22;
export const LEAST_SAMPLES = 8;

// A fault of the file, told in one sentence.
export const fault = (sentence) => Object.assign(new Error(sentence), { name: 'FileFault' });

export const grouped = (count) => String(count).replace(/\B(?=(\d{3})+$)/g, '\u2009');

const most = grouped(MOST_SAMPLES);

export const tooLong = (what) => fault(`${what}, and this page takes ${most} samples at most.`);

export function checkCount(count) {
  if (count > MOST_SAMPLES) throw tooLong(`The file has ${grouped(count)} samples`);
  if (count < LEAST_SAMPLES) {
    const has = ['no numbers', 'only one number'][count] ?? `only ${count} numbers`;
    throw fault(`The file has ${has}, and a signal needs ${LEAST_SAMPLES} at least.`);
  }
}
