// Starts the page: the tabs, the status line, and the panels, each of which is mounted when it is first opened.
//
// A panel is { id, title, defaults, mount(root, services) }. `defaults` names the keys of its state (state.js).
// `mount` fills `root` and returns { show(state), hide() }: `show` is called with the panel's whole state
// whenever it is opened and when the address has changed; `hide` when another is opened.
//
// services = {
//   compute      run, latest, cancel (compute.js)
//   state        get(), set(changes), for this panel (state.js)
//   charts       line, picture (charts.js)
//   controls     everything of controls.js
//   announce     announce(text): read out to those who do not see the page
// }

import * as charts from './charts.js';
import { createCompute } from './compute.js';
import * as controls from './controls.js';
import { createState } from './state.js';
import { mountThemeButton } from './theme.js';
import { panel as wavelet } from './wavelet.js';
import { panel as signal } from './signal.js';
import { panel as image } from './image.js';

const { make } = controls;
const panels = [wavelet, signal, image];
const byId = (id) => document.getElementById(id);

function announce(text) {
  byId('announcements').textContent = '';
  // A text that did not change would not be read again.
  setTimeout(() => {
    byId('announcements').textContent = text;
  }, 50);
}

function showStatus({ busy, fraction, text }) {
  const line = byId('status');
  if (line.hidden && busy) announce('Computing.');
  line.hidden = !busy;
  byId('status-text').textContent = text || 'Computing';
  if (fraction === null) byId('status-progress').removeAttribute('value');
  else byId('status-progress').value = fraction;
}

const compute = createCompute(showStatus);
const state = createState(Object.fromEntries(panels.map(({ id, defaults }) => [id, defaults])));
const mounted = new Map();

function tabOf({ id, title }) {
  return make(
    'button',
    {
      type: 'button',
      role: 'tab',
      id: `tab-${id}`,
      'aria-controls': `panel-${id}`,
      onclick: () => state.panel() !== id && state.open(id),
    },
    title,
  );
}

const rootOf = ({ id }) =>
  make('div', {
    role: 'tabpanel',
    id: `panel-${id}`,
    class: 'panel',
    'aria-labelledby': `tab-${id}`,
    hidden: true,
  });

function servicesOf(id) {
  const ofPanel = { get: () => state.of(id), set: (changes) => state.set(id, changes) };
  return { compute, state: ofPanel, charts, controls, announce };
}

function show(open) {
  byId('announcements').textContent = '';
  for (const { id } of panels) {
    const chosen = id === open;
    const tab = byId(`tab-${id}`);
    tab.setAttribute('aria-selected', String(chosen));
    tab.tabIndex = chosen ? 0 : -1;
    const wasOpen = !byId(`panel-${id}`).hidden;
    byId(`panel-${id}`).hidden = !chosen;
    if (wasOpen && !chosen) mounted.get(id)?.hide();
  }
  if (!mounted.has(open)) {
    const panel = panels.find(({ id }) => id === open);
    mounted.set(open, panel.mount(byId(`panel-${open}`), servicesOf(open)));
  }
  mounted.get(open).show(state.of(open));
}

function moveAlongTabs(event) {
  const steps = { ArrowLeft: -1, ArrowRight: 1, Home: -Infinity, End: Infinity };
  if (!(event.key in steps)) return;
  event.preventDefault();
  const now = panels.findIndex(({ id }) => id === state.panel());
  const { length } = panels;
  const next = Number.isFinite(steps[event.key])
    ? (now + steps[event.key] + length) % length
    : steps[event.key] > 0
      ? length - 1
      : 0;
  state.open(panels[next].id);
  byId(`tab-${panels[next].id}`).focus();
}

// What is dropped beside the panel is meant for it; a browser would show the file in place of the page.
function catchDrops() {
  addEventListener('dragover', (event) => event.preventDefault());
  addEventListener('drop', (event) => {
    if (event.defaultPrevented) return;
    event.preventDefault();
    const { dataTransfer } = event;
    byId(`panel-${state.panel()}`).dispatchEvent(new DragEvent('drop', { dataTransfer, cancelable: true }));
  });
}

// The button goes when nothing is computed any more; the hand returns to where it was.
function cancelOnClick() {
  let before = null;
  byId('panels').addEventListener('focusin', ({ target }) => {
    before = target;
  });
  byId('cancel').addEventListener('click', () => {
    compute.cancel();
    announce('Cancelled.');
    before?.focus();
  });
}

function start() {
  compute.warmUp();
  mountThemeButton(byId('theme'));
  byId('tabs').append(...panels.map(tabOf));
  byId('tabs').addEventListener('keydown', moveAlongTabs);
  byId('panels').replaceChildren(...panels.map(rootOf));
  cancelOnClick();
  catchDrops();
  // The fragment of the address is the state, so that a link within the page may not change it.
  byId('skip').addEventListener('click', (event) => {
    event.preventDefault();
    byId('panels').focus();
  });
  state.onOpen(show);
  show(state.panel());
}

start();
