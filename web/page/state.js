// The state of the page, which is in the fragment of its address: #signal?wavelet=daublet8&levels=5
//
// The state of a panel is a flat record of short texts. Numbers are turned into texts, so a panel reads
// Number(state.levels). A panel names its keys and their first values in `defaults`; what is at its default
// is left out of the address; keys that no panel has named are dropped, and so is what is no finite number where
// the default is a number. SHARED belongs to all panels: a
// wavelet chosen in one is chosen in the others.
//
//   const state = createState({ signal: { levels: 5 }, ... });
//   state.panel()             the panel that is open
//   state.open(panel)         opens another, a step of the browser's history
//   state.of(panel)           its whole record, defaults and shared values included
//   state.set(panel, changes) changes some values; rewrites the address, no step of the history
//   state.onOpen(listener)    listener(panel, record): after open, after Back, and after an edited address
//
// A panel gets `services.state = { get(), set(changes) }`, which are `of` and `set` for itself. `set` does not
// call `show`: who changes the state draws what follows from it.

export const SHARED = { wavelet: 'daublet8', boundary: 'periodic' };

const REWRITE_AFTER = 250; // ms; browsers refuse addresses that change with every step of a slider

const texts = (record) =>
  Object.fromEntries(Object.entries(record).map(([key, value]) => [key, String(value)]));

function parse(fragment) {
  const [panel, query = ''] = fragment.replace(/^#/, '').split('?', 2);
  return { panel, values: Object.fromEntries(new URLSearchParams(query)) };
}

function pick(record, keys) {
  return Object.fromEntries(Object.entries(record).filter(([key]) => Object.hasOwn(keys, key)));
}

const isNumber = (text) => text.trim() !== '' && Number.isFinite(Number(text));

const admitted = (record, defaults) => Object.fromEntries(
  Object.entries(record).filter(([key, text]) => typeof defaults[key] !== 'number' || isNumber(text)));

export function createState(defaultsOfPanels) {
  const defaults = Object.fromEntries(
    Object.entries(defaultsOfPanels).map(([id, record]) => [id, texts(record)]),
  );
  const values = Object.fromEntries(Object.keys(defaults).map((id) => [id, {}]));
  const listeners = new Set();
  let shared = texts(SHARED);
  let open = Object.keys(defaults)[0];
  let timer = 0;

  const of = (panel) => ({ ...defaults[panel], ...shared, ...values[panel] });

  function address() {
    const first = { ...defaults[open], ...SHARED };
    const told = Object.entries(of(open)).filter(([key, value]) => value !== first[key]);
    const query = new URLSearchParams(told).toString();
    return `#${open}${query ? `?${query}` : ''}`;
  }

  function keep(panel, changes) {
    shared = { ...shared, ...pick(changes, SHARED) };
    values[panel] = { ...values[panel], ...pick(changes, defaults[panel]) };
  }

  // What the address does not tell is at its default.
  function read() {
    const told = parse(location.hash);
    open = Object.hasOwn(defaults, told.panel) ? told.panel : Object.keys(defaults)[0];
    values[open] = {};
    shared = texts(SHARED);
    keep(open, admitted(told.values, defaultsOfPanels[open]));
  }

  function rewrite() {
    clearTimeout(timer);
    timer = 0;
    history.replaceState(null, '', address());
  }

  const tell = () => listeners.forEach((listener) => listener(open, of(open)));

  addEventListener('popstate', () => {
    clearTimeout(timer);
    read();
    tell();
  });
  addEventListener('pagehide', () => timer && rewrite());
  read();

  return {
    panel: () => open,
    of,
    open(panel) {
      if (timer) rewrite();
      open = panel;
      history.pushState(null, '', address());
      tell();
    },
    set(panel, changes) {
      keep(panel, texts(changes));
      if (panel !== open) return;
      clearTimeout(timer);
      timer = setTimeout(rewrite, REWRITE_AFTER);
    },
    onOpen(listener) {
      listeners.add(listener);
    },
  };
}
