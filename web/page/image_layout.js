// Where the packets of an image lie among its coefficients.

import { packetPlace } from './packets.js';

// `basis` lists [level, row position, column position].
export function blocksOf(rows, cols, basis) {
  return basis.map(([level, row, col]) => {
    const [down, across] = [packetPlace(rows, level, row), packetPlace(cols, level, col)];
    return { level, row, col, top: down.start, left: across.start, height: down.length, width: across.length };
  });
}

// The ordinary wavelet basis: the smooth part, and the details from the coarsest to the finest.
export function waveletBasis(levels) {
  const details = Array.from({ length: levels }, (_, i) => levels - i)
    .flatMap((level) => [[level, 1, 0], [level, 0, 1], [level, 1, 1]]);
  return [[levels, 0, 0], ...details];
}

const LETTERS = { '1 0': 'H', '0 1': 'V', '1 1': 'D' };

// Of a subband of the wavelet basis; H is high-pass along the columns.
export const nameOf = ({ level, row, col }) => `${LETTERS[`${row} ${col}`] ?? 'smooth '}${level}`;

// How long a side must be so that it can be halved so often; mirrored ends take any length.
const extended = (side, levels, boundary) =>
  (boundary === 'symmetric' ? side : Math.ceil(side / 2 ** levels) * 2 ** levels);

export const transformedSize = ({ width, height }, levels, boundary) =>
  ({ rows: extended(height, levels, boundary), cols: extended(width, levels, boundary) });

const MOST_LEVELS = 6;  // a packet table holds the image once for each level, and once more

// How many levels an image takes; 0 where the filters at the ends are too long for it.
export function deepestLevel({ width, height }, wavelet, boundary) {
  const side = Math.min(width, height);
  let level = Math.min(MOST_LEVELS, Math.floor(Math.log2(side)));
  const taps = boundary === 'interval' ? wavelet.taps[0] : 0;
  while (level > 0 && Math.ceil(side / 2 ** level) < taps) level -= 1;
  return level;
}
