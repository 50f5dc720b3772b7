// The controls that all panels are made of. Each returns a record with `element`, to be put somewhere, and
// what is named below. Labels are visible texts.
//
//   make('p', { class: 'hint', onclick: f }, 'text', child...)   an element
//   select({ label, options: [{ value, text, disabled }], value, onChange(value) })
//                                                              -> value (get, set), setOptions(options, value)
//   slider({ label, min, max, step, value, format(number), onInput(number), onChange(number) })
//       onInput at each step of the hand, onChange when it rests
//                                                            -> value (get, set), setRange({ min, max, step })
//   number({ label, min, max, step, value, onChange(number) }) -> value (get, set), setRange({ min, max })
//   checkbox({ label, value, onChange(boolean) })              -> value (get, set)
//   button({ text, label, onClick })
//   copyButton(() => text, what, announce)
//   fileDrop({ label, accept, onFile(file, count), target })   a button; files may be dropped on `target` too, of
//                                                              which `count` were dropped and the first is given
//   errorLine()                                                -> show(text), clear(); is read out at once
//   table({ caption, head: [texts], rows: [[texts]] })         -> update(rows)
//   group(label, ...elements)                                  controls in a row
//   section(title, ...elements)                                a part of a panel, under a heading
//   download(blob, name)                                       saves a file

let ids = 0;

const newId = (stem) => {
  ids += 1;
  return `${stem}-${ids}`;
};

export function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('on')) element.addEventListener(name.slice(2).toLowerCase(), value);
    else if (value === true) element.setAttribute(name, '');
    else if (value !== false && value !== null && value !== undefined) element.setAttribute(name, value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

function labelled(label, control, ...more) {
  const id = newId('control');
  control.id = id;
  return make('div', { class: 'control' }, make('label', { for: id }, label), control, ...more);
}

export function select({ label, options, value, onChange }) {
  const control = make('select', { onchange: () => onChange(control.value) });
  const setOptions = (newOptions, newValue) => {
    const choices = newOptions.map((option) =>
      make('option', { value: option.value, disabled: option.disabled }, option.text),
    );
    control.replaceChildren(...choices);
    control.value = newValue;
  };
  setOptions(options, value);
  return {
    element: labelled(label, control),
    setOptions,
    get value() {
      return control.value;
    },
    set value(newValue) {
      control.value = newValue;
    },
  };
}

export function slider({ label, min, max, step = 1, value, format = String, onInput, onChange }) {
  const output = make('output', { class: 'value' });
  const control = make('input', { type: 'range', min, max, step });
  const tell = () => {
    output.textContent = format(Number(control.value));
    control.setAttribute('aria-valuetext', output.textContent);
  };
  const set = (newValue) => {
    control.value = newValue;
    tell();
  };
  control.addEventListener('input', () => {
    tell();
    onInput?.(Number(control.value));
  });
  control.addEventListener('change', () => onChange?.(Number(control.value)));
  set(value);
  const element = labelled(label, control, output);
  element.classList.add('slider');
  output.setAttribute('for', control.id);
  return {
    element,
    setRange(range) {
      Object.assign(control, range);
      tell();
    },
    get value() {
      return Number(control.value);
    },
    set value(newValue) {
      set(newValue);
    },
  };
}

export function number({ label, min, max, step = 1, value, onChange }) {
  const control = make('input', { type: 'number', min, max, step, value, inputmode: 'numeric' });
  const within = () => {
    const wanted = Math.round((control.valueAsNumber - min) / step) * step + Number(min);
    return Number.isNaN(wanted) ? Number(control.min) : Math.min(Math.max(wanted, control.min), control.max);
  };
  control.addEventListener('change', () => {
    control.value = within();
    onChange(Number(control.value));
  });
  return {
    element: labelled(label, control),
    setRange(range) {
      Object.assign(control, range);
    },
    get value() {
      return Number(control.value);
    },
    set value(newValue) {
      control.value = newValue;
    },
  };
}

export function checkbox({ label, value, onChange }) {
  const control = make('input', { type: 'checkbox', onchange: () => onChange(control.checked) });
  control.checked = value;
  const element = make('label', { class: 'control checkbox' }, control, ` ${label}`);
  return {
    element,
    get value() {
      return control.checked;
    },
    set value(newValue) {
      control.checked = newValue;
    },
  };
}

export function button({ text, label, onClick }) {
  return { element: make('button', { type: 'button', 'aria-label': label, onclick: onClick }, text) };
}

// Where there is no clipboard, as on a page without TLS, the text is copied out of a field.
async function copy(text) {
  if (navigator.clipboard) return navigator.clipboard.writeText(text);
  const field = make('textarea', { class: 'unseen' });
  field.value = text;
  document.body.append(field);
  field.select();
  document.execCommand('copy');
  field.remove();
  return undefined;
}

export function copyButton(textOf, what, announce) {
  const clicked = async () => {
    try {
      await copy(textOf());
      announce(`Copied: ${what}.`);
    } catch {
      announce('The browser did not let the page copy. Please select the text and copy it.');
    }
  };
  return button({ text: 'Copy', label: `Copy ${what}`, onClick: clicked });
}

export function fileDrop({ label, accept, onFile, target }) {
  const input = make('input', { type: 'file', accept, class: 'unseen', tabindex: '-1', 'aria-hidden': 'true' });
  input.addEventListener('change', () => {
    if (input.files.length) onFile(input.files[0], 1);
    input.value = ''; // so that the same file can be chosen again
  });
  const open = button({ text: label, onClick: () => input.click() });
  const area = make('div', { class: 'drop' }, open.element, input, make('span', {}, 'or drop one here'));
  const place = target ?? area;
  const mark = (over) => area.classList.toggle('over', over);
  place.addEventListener('dragover', (event) => {
    event.preventDefault();
    mark(true);
  });
  place.addEventListener('dragleave', () => mark(false));
  place.addEventListener('drop', (event) => {
    event.preventDefault();
    mark(false);
    const { files } = event.dataTransfer;
    if (files.length) onFile(files[0], files.length);
  });
  return { element: area };
}

export function errorLine() {
  const element = make('p', { class: 'error', role: 'alert', hidden: true });
  const show = (text) => {
    element.textContent = text;
    element.hidden = !text;
  };
  return { element, show, clear: () => show('') };
}

export function table({ caption, head, rows }) {
  const body = make('tbody');
  const update = (newRows) =>
    body.replaceChildren(
      ...newRows.map((row) =>
        make('tr', {}, ...row.map((cell, i) => make(i ? 'td' : 'th', i ? {} : { scope: 'row' }, String(cell)))),
      ),
    );
  const heading = make('thead', {}, make('tr', {}, ...head.map((text) => make('th', { scope: 'col' }, text))));
  update(rows);
  const whole = make('table', {}, make('caption', {}, caption), heading, body);
  return {
    element: make('div', { class: 'scrolls', tabindex: '0', role: 'group', 'aria-label': caption }, whole),
    update,
  };
}

export const group = (label, ...elements) =>
  make('div', { class: 'controls', role: 'group', 'aria-label': label }, ...elements);

export const section = (title, ...elements) => make('section', {}, make('h2', {}, title), ...elements);

export function download(blob, name) {
  const link = make('a', { href: URL.createObjectURL(blob), download: name });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}
