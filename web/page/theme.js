// The colours of the page, light or dark.
//
//   theme()                 the colours as they are now: { dark, background, foreground, muted, grid, accent,
//                           series: [eight colours], dashes: [eight line patterns], shade(t) }.
//                           shade(t), 0 <= t <= 1, returns [red, green, blue] of a scale from nothing to much.
//   onThemeChange(listener) calls it after each change; returns a function that ends this.
//   mountThemeButton(button) makes it go through automatic, light and dark.

const CHOICES = ['auto', 'light', 'dark'];
const NAMES = { auto: 'automatic', light: 'light', dark: 'dark' };
const STORED = 'theme'; // the site's own name for it

// Lines are told apart by their patterns as well.
const DASHES = [[], [7, 4], [2, 3], [10, 3, 2, 3], [5, 2], [1, 2], [12, 4], [6, 2, 1, 2]];

const SHADES = {
  light: [
    [255, 255, 255],
    [198, 219, 239],
    [107, 174, 214],
    [33, 113, 181],
    [8, 38, 92],
  ],
  dark: [
    [22, 24, 29],
    [28, 60, 110],
    [50, 120, 180],
    [120, 190, 230],
    [240, 250, 255],
  ],
};

const listeners = new Set();
const preference = matchMedia('(prefers-color-scheme: dark)');

function chosen() {
  try {
    const stored = localStorage.getItem(STORED);
    return CHOICES.includes(stored) ? stored : 'auto';
  } catch {
    return 'auto';
  }
}

function choose(choice) {
  try {
    localStorage.setItem(STORED, choice);
  } catch {
    // Without storage the choice lasts until the page is left.
  }
  apply(choice);
}

function apply(choice) {
  const dark = choice === 'dark' || (choice === 'auto' && preference.matches);
  document.documentElement.dataset.theme = dark ? 'dark' : 'light';
  for (const listener of listeners) listener();
}

export function onThemeChange(listener) {
  listeners.add(listener);
  return () => listeners.delete(listener);
}

export function mountThemeButton(button) {
  let choice = chosen();
  const name = () => {
    button.textContent = `Theme: ${NAMES[choice]}`;
  };
  button.addEventListener('click', () => {
    choice = CHOICES[(CHOICES.indexOf(choice) + 1) % CHOICES.length];
    choose(choice);
    name();
  });
  preference.addEventListener('change', () => apply(choice));
  name();
  button.hidden = false;
}

function shadeOf(stops) {
  return (t) => {
    const place = Math.min(Math.max(t, 0), 1) * (stops.length - 1);
    const below = Math.min(Math.floor(place), stops.length - 2);
    return stops[below].map((value, i) => Math.round(value + (place - below) * (stops[below + 1][i] - value)));
  };
}

export function theme() {
  const style = getComputedStyle(document.documentElement);
  const colour = (name) => style.getPropertyValue(`--${name}`).trim();
  const dark = document.documentElement.dataset.theme === 'dark';
  return {
    dark,
    background: colour('background'),
    foreground: colour('foreground'),
    muted: colour('muted'),
    grid: colour('grid'),
    accent: colour('accent'),
    series: DASHES.map((_, i) => colour(`series-${i + 1}`)),
    dashes: DASHES,
    shade: shadeOf(dark ? SHADES.dark : SHADES.light),
  };
}
