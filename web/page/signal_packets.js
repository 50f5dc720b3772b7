// The part of the panel "A signal" with the packet table, the best basis and the cosine packets.

import { isCancelled } from './compute.js';
import { COSTS } from './costs.js';
import { grouped } from './files.js';
import { lengthNote } from './lengths.js';
import { resultsIn } from './signal_results.js';
import { tablePicture, tilingPicture } from './tiling.js';

const WITHOUT_ASKING = 2 ** 17;  // samples; the search of longer signals begins at the press of a button

const text = (value) => String(Number(value.toPrecision(5))).replace('-', '−');

export function packetPart({ services, calls, guarded, settings, onChange, threshold }) {
  const { state, charts, controls } = services;
  const { make, group, select, slider, button } = controls;
  const hint = make('p', { class: 'hint', hidden: true });
  const lengths = make('p', { class: 'hint' });
  const [tablePlace, tilingPlace, cosinePlace] = [make('div'), make('div'), make('div')];
  const pictures = {};
  let turn = 0;

  const depth = slider({
    label: 'Depth of the table',
    min: 1, max: 12, value: 6,
    onInput: (value) => change({ depth: value }),
  });
  const cost = select({
    label: 'Cost',
    options: COSTS,
    value: 'shannon',
    onChange: (value) => change({ cost: value }),
  });
  const start = button({ text: 'Search the best basis', onClick: () => search() });
  const comparison = controls.table({
    caption: 'How few coefficients hold 99 % of the energy',
    head: ['basis', 'packets', 'cost', 'coefficients', 'share'],
    rows: [],
  });

  function change(changes) {
    state.set(changes);
    draw();
    onChange();
  }

  function waiting(sentence) {
    hint.textContent = sentence;
    hint.hidden = !sentence;
    start.element.hidden = !sentence;
  }

  function place(name, parent, record) {
    if (pictures[name]) pictures[name].update(record);
    else pictures[name] = charts.picture(parent, record);
  }

  const share = (count) => (count === 1 ? '1 packet' : `${count} packets`);

  function tilingOf({ axis }, { coefficients, basis, length }, title, windows) {
    return {
      title, coefficients, basis, windows, height: 300,
      description:
        `${share(basis.length)} of levels ${basis[0][0]} to ${basis[basis.length - 1][0]}. Colours are energies.`,
      times: [axis.start, axis.start + length * axis.step],
      timeLabel: axis.unit,
      highest: 0.5 / axis.step,
      frequencyLabel: axis.perUnit,
    };
  }

  function tellLengths(result, { count, depth: levels }) {
    const split = lengthNote(count, levels, result.length);
    const cosines = lengthNote(count, levels + 1, result.cosines.length);
    lengths.textContent = [split && `Wavelet packets: ${split}`, cosines && `Cosine packets: ${cosines}`].join(' ');
  }

  function show(result, now) {
    const { signal } = now;
    results.drawn();
    tellLengths(result, now);
    place('table', tablePlace, tablePicture({
      title: 'Packet table and best basis',
      description: `The packets of ${result.table.magnitudes.length / result.table.columns - 1} levels, of which ` +
        `${share(result.basis.length)} are framed: the basis of least cost.`,
      table: result.table, count: result.length, basis: result.basis, height: 300,
    }));
    place('packets', tilingPlace,
      tilingPicture(tilingOf(signal, result, 'Best basis of wavelet packets', false)));
    place('cosines', cosinePlace,
      tilingPicture(tilingOf(signal, result.cosines, 'Best basis of cosine packets', true)));
    comparison.update([...result.rows, result.cosines.row].map(({ name, packets, cost: total, count, of }) =>
      [name, packets, text(total), count, `${Number(((100 * count) / of).toPrecision(3))} %`]));
  }

  const search = () => guarded(async () => {
    turn += 1;
    const mine = turn;
    const now = settings();
    if (!now) return;
    const { wavelet: { function: name, arguments: orders }, boundary, depth: levels, way } = now;
    const wavelet = { function: name, arguments: orders };
    waiting('');
    results.computing();
    try {
      const result = await calls(now.signal, 'packets',
        { wavelet, boundary, depth: levels, way, cost: now.cost, threshold: threshold() });
      if (result && mine === turn) show(result, now);
    } catch (error) {
      if (mine === turn) {
        waiting('The best basis was not searched.');
        results.gone();
        if (isCancelled(error)) keepFocus();
      }
      throw error;
    }
  });

  function clear() {
    turn += 1;
    waiting('');
    results.gone();
  }

  // The button that was pressed to cancel the search is hidden when it has ended.
  function keepFocus() {
    const { activeElement } = document;
    if (activeElement === document.body || activeElement.closest('[hidden]')) start.element.focus();
  }

  function draw() {
    const now = settings();
    if (!now) {
      clear();
      return;
    }
    depth.setRange({ min: 1, max: now.depths });
    depth.value = now.depth;
    cost.value = now.cost;
    if (now.count <= WITHOUT_ASKING) {
      search();
      return;
    }
    clear();
    guarded(() => waiting(`Of ${grouped(now.count)} samples the search takes a while.`));
  }

  const results = resultsIn(make,
    lengths, tablePlace, make('div', { class: 'charts' }, tilingPlace, cosinePlace), comparison.element);
  waiting('');
  return {
    element: make('div', {}, group('Packets', depth.element, cost.element, start.element), hint, results.element),
    draw,
    clear,
    computing: results.computing,
    thresholdChanged: () => settings()?.cost === 'count_above' && draw(),
  };
}
