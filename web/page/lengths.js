// How a signal of any length is made to fit a transform, and how deep the transform may go.

const MOST_LEVELS = 12;
const MOST_IN_TABLE = 2 ** 25;  // numbers; twice that many are in memory while a table is searched

export const halvings = (count) => Math.floor(Math.log2(count));

// The length that is transformed: 2^level divides it, unless the ends are mirrored, where any length will do.
export function fittedLength(count, level, boundary, way) {
  const step = 2 ** level;
  if (boundary === 'symmetric' || count % step === 0) return count;
  return count - (count % step) + (way === 'cut' ? 0 : step);
}

// Extended by its mirror image beyond the last sample, as Python's `pad` does it, or cut.
export function fitted(samples, length) {
  const count = samples.length;
  if (length <= count) return samples.subarray(0, length);
  const extended = new Float64Array(length);
  extended.set(samples);
  for (let i = count; i < length; i += 1) extended[i] = samples[2 * count - 1 - i];
  return extended;
}

function admits(count, level, { boundary, way, taps }) {
  if (level > halvings(count)) return false;
  return boundary !== 'interval' || fittedLength(count, level, boundary, way) / 2 ** level >= taps;
}

export function mostLevels(count, ends) {
  let level = 0;
  while (level < MOST_LEVELS && admits(count, level + 1, ends)) level += 1;
  return level;
}

// Of packet tables: cosine packets need one halving more, and the table must fit into memory.
export function mostDepth(count, ends) {
  return Math.min(mostLevels(count, ends), halvings(count) - 1, Math.floor(MOST_IN_TABLE / count) - 1);
}

// What was done to the length, in a sentence; none where nothing was.
export function lengthNote(count, level, length) {
  if (length === count) return '';
  const reason = `2^${level} = ${2 ** level} does not divide ${count}`;
  if (length < count) return `${reason}, so the last ${count - length} samples are left out.`;
  return `${reason}, so the signal is extended to ${length} samples by its mirror image.`;
}
