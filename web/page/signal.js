// The panel "A signal": choose one, look at its coefficients, remove small ones, and search its best basis.

import { codeBlock } from './code.js';
import { isCancelled } from './compute.js';
import { COSTS } from './costs.js';
import { coefficientPart } from './signal_coefficients.js';
import { lengthNote, fittedLength, mostDepth, mostLevels } from './lengths.js';
import { callsOf } from './signal_calls.js';
import { linesOf } from './signal_code.js';
import { packetPart } from './signal_packets.js';
import { sourcePart } from './signal_source_part.js';
import { resultsIn } from './signal_results.js';
import { waveletChoice } from './wavelet_choice.js';

const defaults = {
  source: 'ecg', file: '', noise: 'none', shape: 'doppler',
  level: 5, way: 'extend', threshold: '', shrink: 'soft', depth: 6, cost: 'shannon',
};

const within = (text, least, most) => Math.min(Math.max(Math.round(Number(text)) || least, least), most);

// Runs what may fail, and tells it in a line. What was shown before stays.
const guardedBy = (line) => async (action) => {
  try {
    await action();
    line.clear();
  } catch (failure) {
    if (!isCancelled(failure)) line.show(failure.message);
  }
};

function mount(root, services) {
  const { compute, state, controls, announce } = services;
  const { make, group, section, select, slider } = controls;
  const error = controls.errorLine();
  const note = make('p', { class: 'hint' });
  let signal = null;

  const choice = waveletChoice({ announce, onChange: (changes) => set({ ...changes, threshold: '' }) });
  const level = slider({
    label: 'Levels',
    min: 1, max: 12, value: 5,
    onInput: (value) => set({ level: value, threshold: '' }),
  });
  const way = select({
    label: 'A length that does not fit',
    options: [{ value: 'extend', text: 'is extended' }, { value: 'cut', text: 'is cut' }],
    value: 'extend',
    onChange: (value) => set({ way: value }),
  });
  const code = codeBlock(announce);
  const codeNote = make('p', { class: 'hint' });
  const lines = resultsIn(make, codeNote, code.element);
  const calls = callsOf(compute);
  const parts = { services, calls, settings, onChange: showCode };
  const packetError = controls.errorLine();
  const coefficients = coefficientPart({
    ...parts, guarded: guardedBy(error), onRest: () => packets.thresholdChanged(),
  });
  const packets = packetPart({
    ...parts, guarded: guardedBy(packetError), threshold: () => coefficients.threshold(),
  });
  const source = sourcePart({
    services,
    target: root,
    onSignal: (newSignal) => {
      signal = newSignal;
      for (const part of [coefficients, packets, lines]) part.computing();
      draw();
    },
  });

  const endsOf = ({ way: wanted }) =>
    ({ boundary: choice.boundary(), way: wanted === 'cut' ? 'cut' : 'extend', taps: choice.wavelet().taps[0] });

  // What the computations need, or null where the signal is too short for the transform.
  function settings() {
    const now = state.get();
    const ends = endsOf(now);
    const count = signal.samples.length;
    const [levels, depths] = [mostLevels(count, ends), mostDepth(count, ends)];
    if (levels < 1 || depths < 1) return null;
    return {
      ...ends, signal, count, levels, depths,
      wavelet: choice.wavelet(),
      level: within(now.level, 1, levels),
      depth: within(now.depth, 1, depths),
      shrink: now.shrink === 'hard' ? 'hard' : 'soft',
      cost: COSTS.some(({ value }) => value === now.cost) ? now.cost : 'shannon',
    };
  }

  function set(changes) {
    state.set(changes);
    draw();
  }

  function tellLength(chosen) {
    const length = fittedLength(chosen.count, chosen.level, chosen.boundary, chosen.way);
    const cutOff = length > chosen.count ? ' What was added is cut off again from the restored signal.' : '';
    note.textContent = lengthNote(chosen.count, chosen.level, length) + cutOff;
    note.hidden = !note.textContent;
    way.element.hidden = chosen.boundary === 'symmetric';
  }

  function draw() {
    if (!signal) return;
    const chosen = settings();
    if (!chosen) {
      error.show(`${signal.samples.length} samples are too few for this wavelet with these ends. ` +
        'Please choose a shorter wavelet or other ends.');
      coefficients.clear();
      packets.clear();
      return;
    }
    level.setRange({ min: 1, max: chosen.levels });
    level.value = chosen.level;
    way.value = chosen.way;
    tellLength(chosen);
    // A cost may need the threshold, which the coefficients tell.
    coefficients.draw().then(() => (coefficients.isMade() ? packets.draw() : packets.clear()));
  }

  function showCode() {
    const chosen = settings();
    if (!chosen || !coefficients.isMade()) {
      lines.gone();
      return;
    }
    const file = signal.file.replace(/["\\]/g, '');
    codeNote.textContent = `“Data as CSV” above saves the file ${file}.`;
    code.update(linesOf({ ...chosen, file, threshold: coefficients.threshold() }));
    lines.drawn();
  }

  root.append(
    section('The signal', source.element),
    section('Its wavelet coefficients',
      choice.element, group('Transform', level.element, way.element), note, error.element, coefficients.element),
    section('Its best basis', packetError.element, packets.element),
    section('The same in Python, C++ and Octave', lines.element),
  );
  return {
    show(now) {
      choice.show(now);
      source.show(now);
    },
    hide() {},
  };
}

export const panel = { id: 'signal', title: 'A signal', defaults, mount };
