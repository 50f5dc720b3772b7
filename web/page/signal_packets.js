// The part of the panel "A signal" with the packet table, the best basis and the cosine packets.

import { COSTS } from './costs.js';
import { grouped } from './files.js';
import { lengthNote } from './lengths.js';
import { tablePicture, tilingPicture } from './tiling.js';

const WITHOUT_ASKING = 2 ** 17;  // samples; the search of longer signals begins at the press of a button

const known = (cost) => (COSTS.some(({ value }) => value === cost) ? cost : 'shannon');

const text = (value) => String(Number(value.toPrecision(5))).replace('-', '−');

export function packetPart({ services, calls, guarded, settings, threshold }) {
  const { state, charts, controls } = services;
  const { make, group, select, slider, button } = controls;
  const hint = make('p', { class: 'hint', hidden: true });
  const lengths = make('p', { class: 'hint' });
  const results = make('div', { hidden: true });
  const [tablePlace, packetPlaceElement, cosinePlace] = [make('div'), make('div'), make('div')];
  const pictures = {};
  let turn = 0;

  const depth = slider({ label: 'Depth of the table', min: 1, max: 12, value: 6, onInput: (value) => change({ depth: value }) });
  const cost = select({ label: 'Cost', options: COSTS, value: 'shannon', onChange: (value) => change({ cost: value }) });
  const start = button({ text: 'Search the best basis', onClick: () => search() });
  const comparison = controls.table({
    caption: 'How few coefficients hold 99 % of the energy',
    head: ['basis', 'packets', 'cost', 'coefficients', 'share'],
    rows: [],
  });

  function change(changes) {
    state.set(changes);
    draw();
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
      description: `${share(basis.length)} of levels ${basis[0][0]} to ${basis[basis.length - 1][0]}. Colours are energies.`,
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
    results.hidden = false;
    tellLengths(result, now);
    place('table', tablePlace, tablePicture({
      title: 'Packet table and best basis',
      description: `The packets of ${result.table.magnitudes.length / result.table.columns - 1} levels, of which ` +
        `${share(result.basis.length)} are framed: the basis of least cost.`,
      table: result.table, count: result.length, basis: result.basis, height: 300,
    }));
    place('packets', packetPlaceElement, tilingPicture(tilingOf(signal, result, 'Best basis of wavelet packets', false)));
    place('cosines', cosinePlace, tilingPicture(tilingOf(signal, result.cosines, 'Best basis of cosine packets', true)));
    comparison.update([...result.rows, result.cosines.row].map(({ name, packets, cost: total, count, of }) =>
      [name, packets, text(total), count, `${Number(((100 * count) / of).toPrecision(3))} %`]));
  }

  const search = () => guarded(async () => {
    turn += 1;
    const mine = turn;
    const now = settings();
    const { wavelet: { function: name, arguments: orders }, boundary, depth: levels, way } = now;
    waiting('');
    try {
      const result = await calls(now.signal, 'packets', {
        wavelet: { function: name, arguments: orders }, boundary, depth: levels, way, cost: known(now.cost), threshold: threshold(),
      });
      if (result && mine === turn) show(result, { ...now, depth: levels });
    } catch (error) {
      waiting('The best basis was not searched.');
      throw error;
    }
  });

  function draw() {
    const now = settings();
    depth.setRange({ min: 1, max: now.depths });
    depth.value = now.depth;
    cost.value = known(now.cost);
    if (now.count <= WITHOUT_ASKING) {
      search();
      return;
    }
    turn += 1;
    results.hidden = true;
    waiting(`Of ${grouped(now.count)} samples the search takes a while.`);
  }

  results.append(
    lengths,
    tablePlace,
    make('div', { class: 'charts' }, packetPlaceElement, cosinePlace),
    comparison.element,
  );
  waiting('');
  return {
    element: make('div', {}, group('Packets', depth.element, cost.element, start.element), hint, results),
    draw,
    thresholdChanged: () => known(settings().cost) === 'count_above' && draw(),
  };
}
