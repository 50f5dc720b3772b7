// Samples out of a WAV file.
//
//   isWav(buffer)
//   readWav(buffer) -> { rate, columns: [{ name, samples: Float64Array }] }      a column for each channel
//
// Integers of 8 to 32 bits become numbers from -1 to 1. Throws a FileFault.

import { checkCount, fault } from './files.js';

const INTEGERS = 1, FLOATS = 3, EXTENSIBLE = 0xfffe;
const TO_THE_END = 0xffffffff;  // of programs that did not know the length when they began to write

const READERS = {
  [`${INTEGERS} 8`]: (view, at) => (view.getUint8(at) - 128) / 2 ** 7,
  [`${INTEGERS} 16`]: (view, at) => view.getInt16(at, true) / 2 ** 15,
  [`${INTEGERS} 24`]: (view, at) => (view.getInt8(at + 2) * 2 ** 16 + view.getUint16(at, true)) / 2 ** 23,
  [`${INTEGERS} 32`]: (view, at) => view.getInt32(at, true) / 2 ** 31,
  [`${FLOATS} 32`]: (view, at) => view.getFloat32(at, true),
  [`${FLOATS} 64`]: (view, at) => view.getFloat64(at, true),
};

const letters = (view, at) => String.fromCharCode(...[0, 1, 2, 3].map((i) => view.getUint8(at + i)));

export function isWav(buffer) {
  return buffer.byteLength >= 12 && letters(new DataView(buffer), 0) === 'RIFF' && letters(new DataView(buffer), 8) === 'WAVE';
}

// The chunks by name: { start, length }.
function chunksOf(view) {
  const chunks = {};
  for (let at = 12; at + 8 <= view.byteLength;) {
    const told = view.getUint32(at + 4, true);
    const length = told === TO_THE_END ? view.byteLength - at - 8 : told;
    chunks[letters(view, at)] = { start: at + 8, length };
    at += 8 + length + (length % 2);
  }
  return chunks;
}

function formatOf(view, chunk) {
  if (!chunk || chunk.length < 16 || chunk.start + chunk.length > view.byteLength) {
    throw fault('The WAV file is broken: it does not say how its samples are written.');
  }
  const [kind, bits] = [view.getUint16(chunk.start, true), view.getUint16(chunk.start + 14, true)];
  const hasOther = kind === EXTENSIBLE && chunk.length >= 40;
  return {
    kind: hasOther ? view.getUint16(chunk.start + 24, true) : kind,
    channels: view.getUint16(chunk.start + 2, true),
    rate: view.getUint32(chunk.start + 4, true),
    block: view.getUint16(chunk.start + 12, true),
    bits,
  };
}

function checkFormat({ kind, channels, rate, block, bits }) {
  if (!READERS[`${kind} ${bits}`]) {
    const known = [INTEGERS, FLOATS].includes(kind);
    throw fault(`This page reads WAV files of 8, 16, 24 or 32 bits or floating point, and this one is ` +
      `${known ? `of ${bits} bits` : 'compressed'}.`);
  }
  if (channels === 0 || rate === 0 || block !== (channels * bits) / 8) {
    throw fault('The WAV file is broken: its channels, rate and sizes do not fit together.');
  }
}

function checkData(view, chunk, block) {
  if (!chunk) throw fault('The WAV file is broken: it has no samples.');
  if (chunk.start + chunk.length > view.byteLength) {
    throw fault('The WAV file is broken: it ends in the middle of its samples.');
  }
  checkCount(Math.floor(chunk.length / block));
}

function channelName(channel, channels) {
  if (channels === 1) return 'mono';
  return channels === 2 ? ['left', 'right'][channel] : `channel ${channel + 1}`;
}

export function readWav(buffer) {
  const view = new DataView(buffer);
  const chunks = chunksOf(view);
  const format = formatOf(view, chunks['fmt ']);
  checkFormat(format);
  checkData(view, chunks.data, format.block);
  const { kind, channels, rate, block, bits } = format;
  const read = READERS[`${kind} ${bits}`];
  const { start, length } = chunks.data;
  const count = Math.floor(length / block);
  const columns = Array.from({ length: channels }, (_, channel) => {
    const first = start + (channel * bits) / 8;
    const samples = new Float64Array(count);
    for (let i = 0; i < count; i += 1) samples[i] = read(view, first + i * block);
    const bad = samples.findIndex((sample) => !Number.isFinite(sample));
    if (bad >= 0) throw fault(`The WAV file holds ${samples[bad]} as sample ${bad + 1}, which no transform takes.`);
    return { name: channelName(channel, channels), samples };
  });
  return { rate, columns: channels > 1 ? [meanOf(columns), ...columns] : columns };
}

function meanOf(columns) {
  const samples = new Float64Array(columns[0].samples.length);
  for (const { samples: more } of columns) more.forEach((sample, i) => { samples[i] += sample / columns.length; });
  return { name: 'mean of all channels', samples };
}
