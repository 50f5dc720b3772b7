// The panel "A wavelet": its functions and packets, its filters, the ends of the data, and the lines of other
// languages that give all that.

import { codeBlock } from './code.js';
import { isCancelled } from './compute.js';
import { LEVELS } from './levels.js';
import { waveletChoice } from './wavelet_choice.js';
import { codeOf } from './wavelet_code.js';
import {
  endsRecord,
  endsText,
  factsOf,
  functionRecord,
  functionsText,
  isOrthonormal,
  responseRecord,
  tapHead,
  tapRows,
  tapsRecord,
} from './wavelet_records.js';

const LARGEST_PACKET = 63;

const DRAWN = [
  { value: 'inverse', text: `the inverse transform, ${2 ** LEVELS} a unit` },
  { value: 'points', text: 'values at points, 32 a unit' },
];

const SIDES = [
  { value: 'left', text: 'left' },
  { value: 'right', text: 'right' },
];

// What each job depends on.
const NEEDS = {
  functions: ['wavelet', 'drawn'],
  filters: ['wavelet'],
  packet: ['wavelet', 'index'],
  ends: ['wavelet', 'boundary', 'side'],
};

const BANKS = ['analysis', 'synthesis'];
const KINDS = ['scaling', 'wavelet'];

const TITLES = {
  analysis: { scaling: 'Scaling function', wavelet: 'Wavelet', packet: 'Packet' },
  synthesis: { scaling: 'Dual scaling function', wavelet: 'Dual wavelet', packet: 'Dual packet' },
};

// With the name that an exported file gets.
function named(wavelet, record, ...words) {
  const file = [wavelet.name, ...words, record.title].join('-').toLowerCase().replace(/ /g, '-');
  return { ...record, file };
}

// The parts of the panel on the page. `changed(key, value)` is called when a control moves.
function build(root, { charts, controls, announce }, changed) {
  const { make, section, group } = controls;
  const moved = (key) => (value) => changed(key, value);
  const parts = {
    choice: waveletChoice({ announce, onChange: (changes) => changed('choice', changes) }),
    drawn: controls.select({ label: 'Drawn by', options: DRAWN, value: 'inverse', onChange: moved('drawn') }),
    packet: controls.slider({
      label: 'Packet',
      min: 0,
      max: LARGEST_PACKET,
      value: 5,
      onInput: moved('packet'),
    }),
    decibels: controls.checkbox({
      label: 'Frequency response in decibels',
      value: false,
      onChange: moved('decibels'),
    }),
    side: controls.select({ label: 'End', options: SIDES, value: 'left', onChange: moved('side') }),
    error: controls.errorLine(),
    facts: make('dl', { class: 'facts' }),
    dualHint: make('p', { class: 'hint' }),
    endHint: make('p', { class: 'hint' }),
    table: make('div'),
    code: codeBlock(announce),
  };
  const grids = Array.from({ length: 4 }, () => make('div', { class: 'charts' }));
  const [functionGrid, packetGrid, filterGrid, endGrid] = grids;
  const packetHint =
    'Packets are counted by frequency: 0 is the scaling function, 1 the wavelet, and packet n has ' +
    'about n half waves to a unit.';

  root.append(
    parts.choice.element,
    parts.error.element,
    parts.facts,
    section('Scaling function and wavelet', group('Curves', parts.drawn.element), parts.dualHint, functionGrid),
    section(
      'Packets',
      make('p', { class: 'hint' }, packetHint),
      group('Packet', parts.packet.element),
      packetGrid,
    ),
    section('Filters', group('Scale', parts.decibels.element), filterGrid, parts.table),
    section('At the ends of the data', group('End', parts.side.element), parts.endHint, endGrid),
    section('The same in Python, C++ and Octave', parts.code.element),
  );

  const chart = (place, title) =>
    charts.line(place, { title, xLabel: 'x', yLabel: 'value', series: [], description: 'Not computed yet.' });
  const ofBank = (place, titleOf) =>
    Object.fromEntries(BANKS.map((bank) => [bank, chart(place, titleOf(bank))]));
  const taps = ofBank(filterGrid, () => 'Taps');
  return {
    ...parts,
    taps,
    response: chart(filterGrid, 'Frequency response'),
    functions: Object.fromEntries(
      BANKS.map((bank) => [
        bank,
        Object.fromEntries(KINDS.map((kind) => [kind, chart(functionGrid, TITLES[bank][kind])])),
      ]),
    ),
    packets: ofBank(packetGrid, (bank) => TITLES[bank].packet),
    atEnds: Object.fromEntries(KINDS.map((kind) => [kind, chart(endGrid, TITLES.analysis[kind])])),
  };
}

function drawFunctions(view, { wavelet, drawn }, result) {
  for (const bank of BANKS) {
    for (const kind of KINDS) {
      const curve = result[bank]?.[kind];
      const title = TITLES[bank][kind];
      view.functions[bank][kind].element.hidden = !curve;
      if (curve) view.functions[bank][kind].update(named(wavelet, functionRecord(title, curve)));
    }
  }
  view.dualHint.textContent = functionsText(wavelet, drawn, result);
}

function drawPacket(view, { wavelet, index }, result) {
  for (const bank of BANKS) {
    view.packets[bank].element.hidden = !result[bank];
    const title = `${TITLES[bank].packet} ${index}`;
    if (result[bank]) view.packets[bank].update(named(wavelet, functionRecord(title, result[bank])));
  }
}

function drawResponse(view, { wavelet, inDecibels }, result) {
  view.response.update(named(wavelet, responseRecord(wavelet, result, inDecibels)));
}

function drawTable(view, { make, table, copyButton }, announce, wavelet, result) {
  const rows = tapRows(wavelet, result);
  const head = tapHead(wavelet);
  const text = () => [head, ...rows].map((row) => row.join('\t')).join('\n');
  const numbers = table({ caption: 'Taps, with the positions that the transform gives them', head, rows });
  const copy = copyButton(text, 'the table of taps', announce);
  const open = view.table.querySelector('details')?.open ?? false;
  view.table.replaceChildren(
    make('details', { open }, make('summary', {}, 'The taps as numbers'), copy.element, numbers.element),
  );
}

function drawFilters(view, services, now, result) {
  const { wavelet } = now;
  const facts = factsOf(wavelet, result);
  const { make } = services.controls;
  view.facts.replaceChildren(
    ...facts.map(([name, value]) => make('div', {}, make('dt', {}, name), make('dd', {}, String(value)))),
  );
  for (const bank of BANKS) {
    const shown = bank === 'analysis' || !isOrthonormal(wavelet);
    const title = isOrthonormal(wavelet) ? 'Taps' : `Taps of the ${bank}`;
    view.taps[bank].element.hidden = !shown;
    if (shown) view.taps[bank].update(named(wavelet, tapsRecord(title, result[bank])));
  }
  drawResponse(view, now, result);
  drawTable(view, services.controls, services.announce, wavelet, result);
}

function drawEnds(view, { wavelet, boundary, side }, result) {
  view.endHint.textContent = endsText(wavelet, boundary);
  for (const kind of KINDS) {
    view.atEnds[kind].update(named(wavelet, endsRecord(kind, result, side), boundary));
  }
}

function mount(root, services) {
  const { compute, state } = services;
  const results = {};

  const view = build(root, services, (key, value) => {
    if (key === 'choice') state.set(value);
    else state.set({ [key]: typeof value === 'boolean' ? (value ? 'yes' : 'no') : value });
    const redrawn = {
      choice: () => drawAll(),
      drawn: () => draw('functions'),
      packet: () => draw('packet'),
      decibels: () => results.filters && drawResponse(view, settings(), results.filters.result),
      side: () => draw('ends'),
    };
    redrawn[key]();
  });

  const settings = () => ({
    wavelet: view.choice.wavelet(),
    boundary: view.choice.boundary(),
    drawn: view.drawn.value,
    index: view.packet.value,
    inDecibels: view.decibels.value,
    side: view.side.value,
  });

  const drawings = {
    functions: (now, result) => drawFunctions(view, now, result),
    filters: (now, result) => drawFilters(view, services, now, result),
    packet: (now, result) => drawPacket(view, now, result),
    ends: (now, result) => drawEnds(view, now, result),
  };

  // The lines belong to one choice, and so wait until its last job is done.
  function drawCode() {
    const now = settings();
    const isDone = (name) => NEEDS[name].every((key) => results[name]?.now[key] === now[key]);
    if (!Object.keys(NEEDS).every(isDone)) return;
    const done = Object.fromEntries(Object.keys(NEEDS).map((name) => [name, results[name].result]));
    view.code.update(codeOf(now, done));
  }

  async function draw(name) {
    const now = settings();
    try {
      const result = await compute.latest(`wavelet.${name}`, `wavelet.${name}`, now);
      if (!result) return;
      results[name] = { now, result };
      view.error.clear();
      drawings[name]({ ...now, inDecibels: view.decibels.value }, result);
      drawCode();
    } catch (error) {
      view.error.show(isCancelled(error) ? 'Cancelled. Any change computes again.' : error.message);
    }
  }

  const drawAll = () => Object.keys(NEEDS).forEach(draw);

  return {
    show(now) {
      view.choice.show(now);
      view.drawn.value = now.drawn === 'points' ? 'points' : 'inverse';
      view.packet.value = Number(now.packet) || 0;
      view.decibels.value = now.decibels === 'yes';
      view.side.value = now.side === 'right' ? 'right' : 'left';
      drawAll();
    },
    hide() {},
  };
}

export const panel = {
  id: 'wavelet',
  title: 'A wavelet',
  defaults: { drawn: 'inverse', packet: 5, decibels: 'no', side: 'left' },
  mount,
};
