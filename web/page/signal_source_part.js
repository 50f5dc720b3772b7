// The part of the panel "A signal" where the signal is chosen, dropped or drawn, and noise added to it.
//
//   const part = sourcePart({ services, target, onSignal(signal) });
//   part.element
//   part.show(state)     opens what the state tells, unless it is there already

import { drawingField } from './drawing.js';
import { grouped, fault, MOST_SAMPLES } from './files.js';
import {
  SECONDS, SHAPES, SOURCES, drawnSignal, fileSignal, openSource, shapeSamples, withNoise,
} from './signal_sources.js';

const MOST_BYTES = 2 ** 28;
const NOISES = ['none', '20', '15', '10', '5'];

const has = (options, value) => options.some((option) => option.value === value);

function sizeText({ samples, axis }) {
  const count = `${grouped(samples.length)} samples`;
  if (axis.unit === 'sample') return `${count}.`;
  const short = (value) => Number(value.toPrecision(4));
  const span = short(samples.length * axis.step);
  if (axis.unit === 'year') return `${count}, ${span} years.`;
  if (axis.unit !== SECONDS) return `${count}, ${axis.unit} from ${short(axis.start)} in steps of ${short(axis.step)}.`;
  return `${count}, ${Number((1 / axis.step).toPrecision(6))} a second, ${span} s.`;
}

export function sourcePart({ services, target, onSignal }) {
  const { compute, state, controls, announce } = services;
  const { make, select, group } = controls;
  const error = controls.errorLine();
  const hint = make('p', { class: 'hint' });
  const field = drawingField({ onDraw: (samples) => {
    state.set({ shape: 'hand' });
    deliver(drawnSignal(samples));
  } });
  let file = null;      // { name, rate, columns, first, note, column }, the last one that could be read
  let base = null;      // the signal without noise
  let shown = '';       // what of the state it was made of

  const source = select({ label: 'Signal', options: SOURCES, value: 'ecg', onChange: chooseSource });
  const noise = select({
    label: 'Noise added',
    options: NOISES.map((value) => ({ value, text: value === 'none' ? 'none' : `signal ${value} dB above it` })),
    value: 'none',
    onChange: (value) => {
      state.set({ noise: value, threshold: '' });
      deliver(base);
    },
  });
  const shape = select({
    label: 'Shape',
    options: Object.entries(SHAPES).map(([value, { title }]) => ({ value, text: title })),
    value: 'doppler',
    onChange: (value) => choose({ shape: value }),
  });
  const column = select({ label: 'Column', options: [], value: '0', onChange: (value) => {
    file.column = Number(value);
    state.set({ threshold: '' });
    deliver(signalOfFile());
  } });
  const drop = controls.fileDrop({
    label: 'Choose a CSV or WAV file',
    accept: '.csv,.txt,.tsv,.dat,.wav,text/*,audio/wav',
    onFile: readFile,
    target,
  });
  const drawing = make('div', { hidden: true }, field.element);

  function chooseSource(value) {
    choose({ source: value, file: value === 'file' ? file.name : '' });
  }

  function choose(changes) {
    state.set({ ...changes, threshold: '' });
    error.clear();
    show(state.get());
  }

  function deliver(signal) {
    base = signal;
    const { noise: decibels } = state.get();
    const full = NOISES.includes(decibels) && decibels !== 'none' ? withNoise(signal, Number(decibels)) : signal;
    hint.textContent = [sizeText(full), signal.id === 'file' ? file.note : ''].join(' ');
    onSignal(full);
  }

  // ---- Files

  const signalOfFile = () => fileSignal(file.name, file.columns[file.column], file.rate);

  async function readFile(dropped, count) {
    error.clear();
    try {
      if (dropped.size > MOST_BYTES) {
        throw fault(`${dropped.name} is too large: this page takes ${grouped(MOST_SAMPLES)} samples at most.`);
      }
      const buffer = await dropped.arrayBuffer();
      const content = await compute.run('signal.read', { buffer }, { transfer: [buffer] });
      const first = count > 1 ? `Of the ${count} files the first is shown.` : '';
      const note = [first, content.note].filter(Boolean).join(' ');
      file = { ...content, note, name: dropped.name, column: content.first };
      state.set({ source: 'file', file: file.name, threshold: '' });
      announce(`${file.name} is read.`);
      show(state.get());
    } catch (failure) {
      error.show(failure.name === 'FileFault' ? `${dropped.name}: ${failure.message}` : failure.message);
    }
  }

  function offerFile() {
    const options = file ? [...SOURCES, { value: 'file', text: file.name }] : SOURCES;
    source.setOptions(options, has(options, source.value) ? source.value : 'ecg');
    if (!file) return;
    column.setOptions(file.columns.map(({ name }, i) => ({ value: String(i), text: name })), String(file.column));
  }

  // ---- The state

  function drawnOf(now) {
    if (Object.hasOwn(SHAPES, now.shape)) {
      field.samples = shapeSamples(now.shape);
      shape.value = now.shape;
    } else if (base?.id !== 'drawn') {
      error.show('What was drawn is not part of the address. Here is a shape instead.');
      field.samples = shapeSamples('doppler');
    }
    return drawnSignal(field.samples);
  }

  // What is not part of the address is told, and the first sample shown in its place.
  function settled(now) {
    if (now.source === 'file' && !file) {
      error.show(`The file ${now.file} was shown here. Files are not part of the address, so please choose it again. ` +
        'Until then here is a sample.');
      return { ...now, source: 'ecg' };
    }
    return now.source === 'file' || has(SOURCES, now.source) ? now : { ...now, source: 'ecg' };
  }

  async function opened(now) {
    if (now.source === 'drawn') return drawnOf(now);
    return now.source === 'file' ? signalOfFile() : openSource(now.source);
  }

  async function show(given) {
    const now = settled(given);
    source.value = now.source;
    offerFile();
    noise.value = NOISES.includes(now.noise) ? now.noise : 'none';
    source.value = now.source;
    shape.element.hidden = now.source !== 'drawn';
    drawing.hidden = now.source !== 'drawn';
    column.element.hidden = now.source !== 'file' || (file.columns.length < 2 && !file.note);
    const wanted = JSON.stringify([now.source, now.noise, now.shape, now.source === 'file' && file.name]);
    if (wanted === shown && now.source !== 'file') {
      deliver(base);
      return;
    }
    try {
      const signal = await opened(now);
      shown = wanted;
      deliver(signal);
    } catch (failure) {
      error.show(failure.message);
    }
  }

  const row = group('Signal', source.element, column.element, shape.element, noise.element, drop.element);
  return { element: make('div', {}, row, hint, error.element, drawing), show };
}
