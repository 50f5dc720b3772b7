// The signals that the page has itself.
//
// A signal is { id, title, samples: Float64Array, clean: Float64Array or null, axis, file }. `axis` places sample i at
// start + i step, in units of `unit`; `perUnit` is the unit of frequencies. `clean` is what noise was added to.

import { readCsv } from './csv.js';
import { scaleOf } from './signal_scale.js';

const SAMPLES = 1024;

const plain = { start: 0, step: 1, unit: 'sample', perUnit: 'cycles per sample' };

export const SECONDS = 'time in s';
export const secondsAxis = (rate) => ({ start: 0, step: 1 / rate, unit: SECONDS, perUnit: 'Hz' });

const years = (start, step) => ({ start, step, unit: 'year', perUnit: 'cycles per year' });

const SHIPPED = {
  ecg: { title: 'Electrocardiogram', axis: secondsAxis(360) },
  nino3: { title: 'Sea surface temperature, NINO3', axis: years(1950, 1 / 12) },
  sunspots: { title: 'Sunspot numbers', axis: years(1700, 1) },
};

// ---- Made here

const sampled = (length, f) => Float64Array.from({ length }, (_, i) => f((i + 0.5) / length));

const chirp = (t) => Math.sin(2 * Math.PI * (10 * t + 190 * t * t));
const longChirp = (t) => Math.sin(2 * Math.PI * (200 * t + 14000 * t * t)) + 0.5 * Math.sin(2 * Math.PI * 9000 * t);
const click = (t) => (Math.abs(t - 0.293) < 5e-4 ? 8 : 0);
const tones = (t) => Math.sin(280 * Math.PI * t) + (t > 0.5 ? Math.sin(100 * Math.PI * t) : 0) + click(t);

// The positions and heights of D. L. Donoho, I. M. Johnstone, Biometrika 81 (1994) 425-455.
const PLACES = [0.1, 0.13, 0.15, 0.23, 0.25, 0.4, 0.44, 0.65, 0.76, 0.78, 0.81];
const JUMPS = [4, -5, 3, -4, 5, -4.2, 2.1, 4.3, -3.1, 2.1, -4.2];
const HEIGHTS = [4, 5, 3, 4, 5, 4.2, 2.1, 4.3, 3.1, 5.1, 4.2];
const WIDTHS = [0.005, 0.005, 0.006, 0.01, 0.01, 0.03, 0.01, 0.01, 0.005, 0.008, 0.005];

const sumOver = (f) => PLACES.reduce((sum, _, i) => sum + f(i), 0);
const blocks = (t) => sumOver((i) => (t >= PLACES[i] ? JUMPS[i] : 0));
const bumps = (t) => sumOver((i) => HEIGHTS[i] / (1 + Math.abs((t - PLACES[i]) / WIDTHS[i])) ** 4);

const MADE = {
  chirp: { title: 'Chirp', length: SAMPLES, f: chirp },
  tones: { title: 'Two tones and a click', length: SAMPLES, f: tones },
  blocks: { title: 'Blocks', length: SAMPLES, f: blocks },
  bumps: { title: 'Bumps', length: SAMPLES, f: bumps },
  long: { title: 'Long chirp and tone', length: 2 ** 16, f: longChirp },
};

export const SHAPES = {
  step: { title: 'Step', f: (t) => (t < 0.4 ? -0.5 : 0.5) },
  tent: { title: 'Tent', f: (t) => Math.max(0, 1 - 4 * Math.abs(t - 0.5)) },
  spike: { title: 'Spike', f: (t) => (Math.abs(t - 0.5) < 0.002 ? 1 : 0) },
  wave: { title: 'Wave', f: (t) => 0.8 * Math.sin(10 * Math.PI * t) },
  doppler: { title: 'Doppler', f: (t) => 2 * Math.sqrt(t * (1 - t)) * Math.sin((2.1 * Math.PI) / (t + 0.05)) },
};

export const SOURCES = [
  ...Object.entries(SHIPPED).map(([value, { title }]) => ({ value, text: title })),
  ...Object.entries(MADE).map(([value, { title, length }]) => ({ value, text: `${title}, ${length} samples` })),
  { value: 'drawn', text: 'Drawn by you' },
];

export const drawnSignal = (samples) =>
  ({ id: 'drawn', title: 'Drawing', samples, clean: null, axis: plain, file: 'drawing.csv' });

export const shapeSamples = (shape) => sampled(512, SHAPES[shape].f);

export function fileSignal(name, { samples, axis: told }, rate) {
  const axis = rate ? secondsAxis(rate) : told ?? plain;
  return { id: 'file', title: name, samples, clean: null, axis, file: `${name.replace(/\.[^.]*$/, '')}.csv` };
}

async function shippedSignal(id) {
  const response = await fetch(new URL(`./data/${id}.csv`, import.meta.url));
  if (!response.ok) throw new Error(`The sample ${id}.csv does not lie beside the page.`);
  const { columns } = readCsv(await response.text());
  return { id, samples: columns[0].samples, clean: null, file: `${id}.csv`, ...SHIPPED[id] };
}

function madeSignal(id) {
  const { title, length, f } = MADE[id];
  return { id, title, samples: sampled(length, f), clean: null, axis: plain, file: `${id}.csv` };
}

const isShipped = (id) => Object.hasOwn(SHIPPED, id);

export async function openSource(id) {
  return isShipped(id) ? shippedSignal(id) : madeSignal(id);
}

// ---- Noise

// Normally distributed numbers, the same each time.
function normalNumbers() {
  let state = 1;
  const uniform = () => {  // mulberry32
    state = (state + 0x6d2b79f5) | 0;
    let t = Math.imul(state ^ (state >>> 15), 1 | state);
    t = (t + Math.imul(t ^ (t >>> 7), 61 | t)) ^ t;
    return ((t ^ (t >>> 14)) >>> 0) / 2 ** 32;
  };
  return () => Math.sqrt(-2 * Math.log(1 - uniform())) * Math.cos(2 * Math.PI * uniform());
}

function deviation(samples) {
  const scale = scaleOf(samples);
  const mean = samples.reduce((sum, x) => sum + scale * x, 0) / samples.length;
  const variance = samples.reduce((sum, x) => sum + (scale * x - mean) ** 2, 0) / samples.length;
  return Math.sqrt(variance) / scale;
}

// The signal so many decibels above white noise.
export function withNoise(signal, decibels) {
  const next = normalNumbers();
  const strength = deviation(signal.samples) / 10 ** (decibels / 20);
  return {
    ...signal,
    title: `${signal.title} with noise`,
    samples: signal.samples.map((x) => x + strength * next()),
    clean: signal.samples,
    file: `noisy-${signal.file}`,
  };
}
