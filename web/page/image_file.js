// Images as grey values, read in the worker: PGM here, all else by the browser.
//
//   await readImage(blob, name) -> { name, width, height, pixels: Uint8Array by rows, notes: [sentences] }
//   pgmOf({ width, height, pixels })      the same as a file
//   pgmName(name)                         and what it is called
//
// What cannot be read is an Error whose message is a sentence for the reader.

const LARGEST_FILE = 100 * 2 ** 20;
const LONGEST_SIDE = 2048;
const SHORTEST_SIDE = 2;

function checkSize(name, { width, height }, reduced) {
  const has = `${name} has ${width} × ${height} pixels`;
  if (Math.min(width, height) < SHORTEST_SIDE) {
    throw new Error(`${has}, and an image needs at least ${SHORTEST_SIDE} × ${SHORTEST_SIDE}.`);
  }
  if (Math.min(reduced.width, reduced.height) < SHORTEST_SIDE) {
    throw new Error(`${has}, which is too narrow: images are reduced until the longest side has ${LONGEST_SIDE}, and ` +
      `less than ${SHORTEST_SIDE} would be left of the other.`);
  }
}

// The three numbers of the head, between which there may be comments.
function readPgmHead(bytes) {
  const text = new TextDecoder('latin1').decode(bytes.subarray(0, 1000));
  const found = /^P5(?:\s+#[^\n]*)*\s+(\d+)(?:\s+#[^\n]*)*\s+(\d+)(?:\s+#[^\n]*)*\s+(\d+)\s/.exec(text);
  if (!found) return null;
  const [width, height, white] = found.slice(1).map(Number);
  return { width, height, white, length: found[0].length };
}

function readPgm(bytes, name) {
  const head = readPgmHead(bytes);
  if (!head || head.white < 1 || head.white > 255) {
    throw new Error(`${name} is not a PGM file of 8 bits; such files begin with P5 and end their grey values at 255.`);
  }
  const { width, height, white, length } = head;
  const values = bytes.subarray(length, length + width * height);
  if (values.length < width * height) throw new Error(`${name} ends before its last pixel.`);
  checkSize(name, head, head);
  return { width, height, values: white === 255 ? values : values.map((value) => Math.round((255 * value) / white)) };
}

async function decoded(blob, name) {
  try {
    return await createImageBitmap(blob, { colorSpaceConversion: 'none' });
  } catch {
    throw new Error(`${name} is not an image that this browser can read, or it is broken.`);
  }
}

const sizeWithin = ({ width, height }) => {
  const scale = Math.min(1, LONGEST_SIDE / Math.max(width, height));
  return { width: Math.max(1, Math.round(width * scale)), height: Math.max(1, Math.round(height * scale)) };
};

function drawnAt(image, { width, height }) {
  const context = new OffscreenCanvas(width, height).getContext('2d', { willReadFrequently: true });
  context.imageSmoothingQuality = 'high';
  context.drawImage(image, 0, 0, width, height);
  return context.getImageData(0, 0, width, height);
}

// The luma of television in whole numbers, on white where it is transparent.
function greyOf(data) {
  const pixels = new Uint8Array(data.length / 4);
  let [coloured, transparent] = [false, false];
  for (let i = 0, at = 0; i < pixels.length; i += 1, at += 4) {
    const [red, green, blue, alpha] = [data[at], data[at + 1], data[at + 2], data[at + 3]];
    const grey = (red * 19595 + green * 38470 + blue * 7471 + 0x8000) >> 16;
    coloured ||= red !== green || green !== blue;
    transparent ||= alpha < 255;
    pixels[i] = alpha === 255 ? grey : Math.round((grey * alpha + 255 * (255 - alpha)) / 255);
  }
  return { pixels, coloured, transparent };
}

const opaque = (values) => {
  const data = new Uint8ClampedArray(4 * values.length);
  values.forEach((value, i) => data.set([value, value, value, 255], 4 * i));
  return data;
};

// Of each byte a character.
const textOf = (bytes) => String.fromCharCode(...bytes);

const startOf = async (blob) => textOf(new Uint8Array(await blob.slice(0, 32).arrayBuffer()));

async function pictureOf(blob, name, start) {
  if (!start.startsWith('P5')) return decoded(blob, name);
  const { width, height, values } = readPgm(new Uint8Array(await blob.arrayBuffer()), name);
  return createImageBitmap(new ImageData(opaque(values), width, height), { colorSpaceConversion: 'none' });
}

const isDeepPng = (start) => start.startsWith('\x89PNG') && start.charCodeAt(24) === 16;

function notesOf({ width, height }, size, { coloured, transparent }, start) {
  return [
    size.width !== width && `It was reduced from ${width} × ${height}, as the longest side may have ${LONGEST_SIDE}.`,
    isDeepPng(start) && 'Its values of 16 bits were reduced to 8.',
    coloured && 'Its colours were turned to grey: 0.299 red + 0.587 green + 0.114 blue.',
    transparent && 'Its transparent parts are shown on white.',
  ].filter(Boolean);
}

export async function readImage(blob, name) {
  if (blob.size === 0) throw new Error(`${name} is empty.`);
  if (blob.size > LARGEST_FILE) throw new Error(`${name} is too large; a file may have ${LARGEST_FILE / 2 ** 20} MB.`);
  const start = await startOf(blob);
  const picture = await pictureOf(blob, name, start);
  const size = sizeWithin(picture);
  checkSize(name, picture, size);
  const grey = greyOf(drawnAt(picture, size).data);
  const result = { name, ...size, pixels: grey.pixels, notes: notesOf(picture, size, grey, start) };
  picture.close();
  return result;
}

export const pgmOf = ({ width, height, pixels }) =>
  new Blob([`P5\n${width} ${height}\n255\n`, pixels], { type: 'image/x-portable-graymap' });

// A name that every system takes and that needs no escapes in a line of code.
export const pgmName = (name) => `grey-${name.replace(/\.[^.]*$/, '').replace(/[^\p{L}\p{M}\p{N}._-]+/gu, '-')}.pgm`;
