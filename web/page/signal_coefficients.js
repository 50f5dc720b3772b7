// The part of the panel "A signal" with the coefficients, the threshold and the reconstruction.

import { isCancelled } from './compute.js';
import { levelName, levelsPicture, partsOf } from './levels_picture.js';
import { samplesFile } from './signal_files.js';
import { resultsIn } from './signal_results.js';

const POSITIONS = 1000;  // of the slider; the threshold is the largest detail times the square of the share

const rounded = (value) => Number(value.toPrecision(4));
const text = (value) => String(Number(value.toPrecision(4))).replace('-', '−');
const percent = (share) => `${Number((100 * share).toPrecision(3))} %`;
const decibelText = (value) =>
  (Number.isFinite(value) && value < 200 ? `${value.toFixed(1)} dB`.replace('-', '−') : 'no difference');

// Loops in place of `from` and iterators, which take ten times as long of millions of samples.
function timesFrom(first, step, count) {
  const times = new Float64Array(count);
  for (let i = 0; i < count; i += 1) times[i] = first + i * step;
  return times;
}

function rangeOf(numbers) {
  let [least, greatest] = [Infinity, -Infinity];
  for (let i = 0; i < numbers.length; i += 1) {
    if (numbers[i] < least) least = numbers[i];
    if (numbers[i] > greatest) greatest = numbers[i];
  }
  return `from ${text(least)} to ${text(greatest)}`;
}

function facts(make, entries) {
  return entries.map(([term, value]) => make('div', {}, make('dt', {}, term), make('dd', {}, value)));
}

export function coefficientPart({ services, calls, guarded, settings, onChange, onRest }) {
  const { state, charts, controls, announce } = services;
  const { make, group, select, slider, button, download } = controls;
  let made = null;       // what the job "coefficients" returned, with its settings
  let restored = null;   // what the job "denoise" returned
  let times = { of: null, x: null };
  let turn = 0;
  const memory = {};

  const thresholdAt = (position) => rounded((made?.largest ?? 0) * (position / POSITIONS) ** 2);
  const positionOf = (value) => Math.round(POSITIONS * Math.sqrt(Math.min(1, value / (made?.largest || 1))));

  // As the state tells, or as the noise asks for.
  function threshold() {
    if (!made) return 0;
    const told = state.get().threshold;
    const wanted = told === '' ? NaN : Number(told);
    return wanted >= 0 && Number.isFinite(wanted) ? wanted : rounded(made.universal);
  }

  const height = slider({
    label: 'Threshold',
    min: 0, max: POSITIONS, value: 0,
    format: (position) => text(position === positionOf(threshold()) ? threshold() : thresholdAt(position)),
    onInput: (position) => {
      state.set({ threshold: thresholdAt(position) });
      redraw();
    },
    onChange: () => onRest(),
  });
  const shrink = select({
    label: 'Details above it',
    options: [{ value: 'soft', text: 'shrink by it (soft)' }, { value: 'hard', text: 'stay (hard)' }],
    value: 'soft',
    onChange: (value) => {
      state.set({ shrink: value });
      redraw();
    },
  });
  const universal = button({ text: 'Threshold of the noise', onClick: () => {
    state.set({ threshold: '' });
    height.value = positionOf(threshold());
    announce(`Threshold ${text(threshold())}.`);
    redraw();
    onRest();
  } });
  universal.element.title = 'The universal threshold: the noise in the finest details, times the root of 2 ln n';
  const shownLevel = select({ label: 'Level', options: [], value: '1', onChange: () => drawLevel() });
  const list = make('dl', { class: 'facts' });
  const save = (label, what) => button({ text: label, onClick: async () => {
    const { samples, name } = what();
    download(await samplesFile(samples), name);
  } });
  const saveDenoised = save('Restored signal as CSV', () =>
    ({ samples: restored.restored.filter(Number.isFinite), name: `denoised-${made.signal.file}` }));
  const saveData = save('Data as CSV', () => ({ samples: made.signal.samples, name: made.signal.file }));

  const main = make('div');
  const picture = make('div');
  const single = make('div');
  const empty = { title: 'Data and restored signal', xLabel: '', yLabel: '', series: [], description: '' };
  const mainChart = charts.line(main, empty);
  const singleChart = charts.line(single, { ...empty, title: 'One level' });
  let levelsChart = null;

  // ---- Drawing

  function x(signal) {
    const { axis, samples } = signal;
    if (times.of !== signal) times = { of: signal, x: timesFrom(axis.start, axis.step, samples.length) };
    return times.x;
  }

  const span = ({ axis, samples }, length) => [axis.start, axis.start + (length ?? samples.length) * axis.step];

  function drawSignal() {
    const { signal } = made;
    const line = (label, y) => ({ label, x: x(signal), y, kind: 'line' });
    mainChart.update({
      ...empty,
      title: `${signal.title}: data and restored signal`,
      xLabel: signal.axis.unit,
      file: 'restored-signal',
      series: [line('data', signal.samples), line('restored', restored.restored),
        ...(signal.clean ? [line('without noise', signal.clean)] : [])],
      description:
        `${signal.samples.length} samples ${rangeOf(signal.samples)}; restored ${rangeOf(restored.restored)}.`,
    });
  }

  function drawLevels() {
    const { signal, coefficients, sizes } = made;
    const record = {
      title: 'Coefficients by level',
      description:
        `${sizes.length - 1} levels of details, the finest on top, and the smooth part. The largest detail is ` +
        `${text(made.largest)}. Details below the threshold of ${text(threshold())} are pale.`,
      coefficients, sizes, memory,
      threshold: threshold(),
      times: span(signal, coefficients.length),
      timeLabel: signal.axis.unit,
    };
    if (levelsChart) levelsChart.update(levelsPicture(record));
    else levelsChart = charts.picture(picture, levelsPicture(record));
  }

  function drawLevel() {
    const { signal, coefficients, sizes } = made;
    const i = shownPart();
    const y = partsOf(coefficients, sizes)[i];
    const [from, to] = span(signal, coefficients.length);
    const step = (to - from) / y.length;
    const middles = timesFrom(from + 0.5 * step, step, y.length);
    singleChart.update({
      title: `Coefficients: ${levelName(sizes, i)}`,
      xLabel: signal.axis.unit,
      yLabel: '',
      file: 'coefficients',
      series: [{ label: levelName(sizes, i), x: middles, y, kind: 'stems' }],
      description: `${y.length} coefficients ${rangeOf(y)}.`,
    });
  }

  // The choice is by number of the level, 0 for the smooth part, so that it stays when there are more levels.
  const shownPart = () => (made.sizes.length - Number(shownLevel.value)) % made.sizes.length;

  function offerLevels() {
    const { sizes } = made;
    const options = sizes.map((_, i) =>
      ({ value: String((sizes.length - i) % sizes.length), text: levelName(sizes, i) }));
    const kept = options.some(({ value }) => value === shownLevel.value);
    shownLevel.setOptions(options.reverse(), kept ? shownLevel.value : '1');
  }

  function tell() {
    const { kept, of, toData, toClean, before } = restored;
    const entries = [['Coefficients kept', `${kept} of ${of}, ${percent(kept / of)}`]];
    if (toClean === null) {
      entries.push(['Data above what was removed', decibelText(toData)]);
    } else {
      entries.push(['Signal to noise, before', decibelText(before)]);
      entries.push(['Signal to noise, restored', decibelText(toClean)]);
    }
    list.replaceChildren(...facts(make, entries));
  }

  // ---- Computing

  function jobOf({ wavelet: { function: name, arguments: orders }, boundary, level, way, shrink: kind }) {
    return { wavelet: { function: name, arguments: orders }, boundary, level, way, shrink: kind };
  }

  async function restore() {
    const now = settings();
    if (!now || !made) return;
    drawLevels();
    const result = await calls(now.signal, 'denoise', { ...jobOf(now), threshold: threshold() });
    if (!result || made.signal !== now.signal) return;
    restored = result;
    drawSignal();
    tell();
    results.drawn();
    onChange();
  }

  const redraw = () => guarded(restore);

  function clear() {
    turn += 1;
    made = null;
    results.gone();
    onChange();
  }

  const draw = () => guarded(async () => {
    turn += 1;
    const mine = turn;
    try {
      const now = settings();
      const result = await calls(now.signal, 'coefficients', jobOf(now));
      if (!result || mine !== turn) return;
      made = { ...result, ...now };
      height.value = positionOf(threshold());
      shrink.value = now.shrink;
      offerLevels();
      drawLevel();
      await restore();
    } catch (failure) {
      if (mine !== turn) return;
      clear();
      throw isCancelled(failure) ? new Error('The coefficients were not computed. A change of a setting begins again.')
        : failure;
    }
  });

  const results = resultsIn(make,
    list, main, group('Files', saveDenoised.element, saveData.element),
    make('div', { class: 'charts' }, picture, make('div', {}, group('One level', shownLevel.element), single)));

  return {
    element: make('div', {}, group('Threshold', height.element, shrink.element, universal.element), results.element),
    draw,
    clear,
    computing: results.computing,
    isMade: () => made !== null,
    threshold,
  };
}
