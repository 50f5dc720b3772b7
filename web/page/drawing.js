// A field to draw a signal in, with the pointer.
//
//   const field = drawingField({ onDraw(samples) });
//   field.element, field.samples (get, set)
//
// Samples are from -1 to 1. Who has no pointer chooses a shape instead.

import { make } from './controls.js';
import { onThemeChange, theme } from './theme.js';

const HEIGHT = 160;  // as in style.css

export function drawingField({ onDraw }) {
  const canvas = make('canvas', { class: 'drawing', 'aria-hidden': 'true' });
  const hint = make('p', { class: 'hint' }, 'Draw in the field, or start from a shape.');
  const element = make('div', {}, canvas, hint);
  let samples = new Float64Array(512);
  let last = null;

  function paint() {
    const scale = devicePixelRatio;
    const width = canvas.clientWidth;
    if (!width) return;
    Object.assign(canvas, { width: Math.round(width * scale), height: Math.round(HEIGHT * scale) });
    const context = canvas.getContext('2d');
    const { grid, series } = theme();
    context.scale(scale, scale);
    context.strokeStyle = grid;
    context.strokeRect(-1, HEIGHT / 2, width + 2, 0);
    context.strokeStyle = series[0];
    context.lineWidth = 2;
    context.beginPath();
    samples.forEach((y, i) => context.lineTo(((i + 0.5) * width) / samples.length, (HEIGHT / 2) * (1 - 0.95 * y)));
    context.stroke();
  }

  function pointOf(event) {
    const box = canvas.getBoundingClientRect();
    const within = (value, most) => Math.min(Math.max(value, 0), most);
    return {
      index: within(Math.floor((samples.length * (event.clientX - box.left)) / box.width), samples.length - 1),
      y: 1 - within((2 * (event.clientY - box.top)) / box.height, 2),
    };
  }

  // From the last point to this, so that a fast hand leaves no gaps.
  function draw(event) {
    const now = pointOf(event);
    const from = last ?? now;
    const steps = Math.max(1, Math.abs(now.index - from.index));
    for (let k = 0; k <= steps; k += 1) {
      const index = Math.round(from.index + ((now.index - from.index) * k) / steps);
      samples[index] = from.y + ((now.y - from.y) * k) / steps;
    }
    last = now;
    paint();
    onDraw(samples.slice());
  }

  canvas.addEventListener('pointerdown', (event) => {
    canvas.setPointerCapture(event.pointerId);
    last = null;
    draw(event);
  });
  canvas.addEventListener('pointermove', (event) => {
    if (canvas.hasPointerCapture(event.pointerId)) draw(event);
  });
  new ResizeObserver(paint).observe(canvas);
  onThemeChange(paint);
  return {
    element,
    get samples() { return samples.slice(); },
    set samples(newSamples) {
      samples = newSamples.slice();
      paint();
    },
  };
}
