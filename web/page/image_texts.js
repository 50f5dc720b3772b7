// What the panel "An image" says in words and numbers.

export const number = (value) => {
  if (!Number.isFinite(value)) return '∞';
  if (value !== 0 && Math.abs(value) < 0.01) return value.toPrecision(2).replace(/-/g, '−');
  const digits = Math.abs(value) < 1 ? 4 : 2;
  const text = Math.abs(value) < 1e6 ? String(Number(value.toFixed(digits)))
    : value.toFixed(0).replace(/\B(?=(\d{3})+$)/g, '\u202f');
  return text.replace('-', '−');
};

const percent = (share) => `${Number((100 * share).toPrecision(3))} %`;

export function imageText({ name, width, height, pixels, notes }) {
  let [sum, least, greatest] = [0, 255, 0];
  for (const value of pixels) {
    sum += value;
    least = Math.min(least, value);
    greatest = Math.max(greatest, value);
  }
  const mean = number(sum / pixels.length);
  const greys = least === greatest ? `All grey values are ${least}`
    : `Grey values from ${least} to ${greatest}, ${mean} in the mean`;
  return [`${name}: ${width} × ${height} pixels.`, `${greys}.`, ...notes].join(' ');
}

function sizeText({ width, height }, [rows, cols]) {
  if (rows === height && cols === width) return '';
  return ' Sides must be halved as often as there are levels, so the image was extended by its mirror image to ' +
    `${cols} × ${rows} pixels; this is cut off again, and its coefficients are counted.`;
}

// An error of nothing but rounding is as good as none.
export const qualityText = ({ psnr }) => (psnr > 200 ? 'over 200 dB, as only rounding errs' : `${number(psnr)} dB`);

const keptText = ({ count, total, smallest }) =>
  `${count} of ${total} coefficients are kept (${percent(count / total)}), from a magnitude of ${number(smallest)} on`;

// `best` may be null.
export function compressionText(image, { wavelet, best }) {
  const first = `${keptText(wavelet)}. Peak signal-to-noise ratio: ${qualityText(wavelet)}`;
  const second = best ? ` in the wavelet basis, ${qualityText(best)} in the best basis` : '';
  return `${first}${second}.${sizeText(image, wavelet.size)}`;
}

// ---- Subbands

export const subbandHead = ['Subband', 'Rows', 'Columns', 'Energy', 'Largest magnitude'];

export const subbandRows = (blocks) => blocks.map(({ name, height, width, share, greatest }) =>
  [name, height, width, percent(share), number(greatest)]);

export const mosaicText = ({ rows, cols, blocks }) =>
  `${rows} rows and ${cols} columns of coefficients in ${blocks.length} subbands. ` +
  `Energy: ${blocks.map(({ name, share }) => `${name} ${percent(share)}`).join(', ')}.`;

export const blockTold = (block) =>
  `${block.name}: ${block.height} × ${block.width} coefficients, ${percent(block.share)} of the energy`;

// ---- The best basis

function levelsText(packets) {
  const counts = new Map();
  for (const [level] of packets) counts.set(level, (counts.get(level) ?? 0) + 1);
  return [...counts].sort(([a], [b]) => a - b).map(([level, count]) => `${count} of level ${level}`).join(', ');
}

export const basisText = ({ basis, cost }) =>
  `The best basis has ${basis.packets.length} packets: ${levelsText(basis.packets)}. ` +
  `It costs ${number(cost.best)}, the wavelet basis ${number(cost.wavelet)}.`;

export const packetTold = ({ level, row, col, height, width }) =>
  `Level ${level}, row ${row}, column ${col}: ${height} × ${width} coefficients`;

export const compareHead = ['Kept', 'Coefficients', 'Wavelet basis', 'Best basis', 'Gain'];

const signed = (value) => `${value < 0 ? '' : '+'}${number(value)}`;

export const compareRows = (rows) => rows.map(({ share, wanted, wavelet, best }) =>
  [`${share} %`, wanted, number(wavelet), number(best), signed(best - wavelet)]);

