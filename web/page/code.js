// Lines of Python, C++ and Octave that give what the page shows, each to be copied.
//
//   const block = codeBlock(announce);
//   block.element
//   block.update({ python, cpp, octave })       texts of whole lines

import { copyButton, make } from './controls.js';

const LANGUAGES = [
  ['python', 'Python'],
  ['cpp', 'C++'],
  ['octave', 'Octave'],
];

export function codeBlock(announce) {
  const texts = {};
  const parts = LANGUAGES.map(([id, name]) => {
    const code = make('code');
    const copy = copyButton(() => texts[id], `the lines of ${name}`, announce);
    const lines = make('pre', { tabindex: '0', role: 'group', 'aria-label': name }, code);
    return { id, code, element: make('div', { class: 'code' }, make('h3', {}, name), copy.element, lines) };
  });
  return {
    element: make('div', { class: 'codes' }, ...parts.map(({ element }) => element)),
    update(newTexts) {
      Object.assign(texts, newTexts);
      for (const { id, code } of parts) code.textContent = texts[id];
    },
  };
}
