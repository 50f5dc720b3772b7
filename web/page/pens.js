// One drawing for both, the canvas and the SVG: a pen has
//
//   rect(x, y, width, height, colour)      filled
//   frame(x, y, width, height, colour)     not filled
//   line(x1, y1, x2, y2, colour)
//   text(x, y, text, colour, anchor)       anchor: 'start', 'middle' or 'end'; y is the middle of the letters
//
// pictureOf(fields, paint) is a record for charts.picture, of which `paint(pen, width, height, theme)` draws.

import { escaped, ticks } from './export.js';

const SIZE = 12;
const FONT = 'system-ui, sans-serif';

function canvasPen(context) {
  context.font = `${SIZE}px ${FONT}`;
  context.textBaseline = 'middle';
  return {
    rect(x, y, width, height, colour) {
      context.fillStyle = colour;
      context.fillRect(x, y, width, height);
    },
    frame(x, y, width, height, colour) {
      context.strokeStyle = colour;
      context.lineWidth = 1.5;
      context.strokeRect(x, y, width, height);
    },
    line(x1, y1, x2, y2, colour) {
      context.strokeStyle = colour;
      context.lineWidth = 1;
      context.beginPath();
      context.moveTo(x1, y1);
      context.lineTo(x2, y2);
      context.stroke();
    },
    text(x, y, text, colour, anchor = 'start') {
      context.fillStyle = colour;
      context.textAlign = { start: 'left', middle: 'center', end: 'right' }[anchor];
      context.fillText(text, x, y);
    },
  };
}

const short = (value) => String(Number(value.toFixed(2)));

function svgPen() {
  const parts = [];
  const box = (x, y, width, height) =>
    `<rect x="${short(x)}" y="${short(y)}" width="${short(width)}" height="${short(height)}"`;
  return {
    rect: (x, y, width, height, colour) => parts.push(`${box(x, y, width, height)} fill="${colour}"/>`),
    frame: (x, y, width, height, colour) =>
      parts.push(`${box(x, y, width, height)} fill="none" stroke="${colour}" stroke-width="1.5"/>`),
    line: (x1, y1, x2, y2, colour) =>
      parts.push(`<path d="M${short(x1)} ${short(y1)}L${short(x2)} ${short(y2)}" stroke="${colour}"/>`),
    text: (x, y, text, colour, anchor = 'start') =>
      parts.push(`<text x="${short(x)}" y="${short(y + 4)}" font-family="${FONT}" font-size="${SIZE}" ` +
        `fill="${colour}" text-anchor="${anchor}">${escaped(text)}</text>`),
    drawn: () => `<g shape-rendering="crispEdges">${parts.join('')}</g>`,
  };
}

export function pictureOf(fields, paint) {
  return {
    ...fields,
    draw: (context, width, height, theme) => paint(canvasPen(context), width, height, theme),
    svg(width, height, theme) {
      const pen = svgPen();
      paint(pen, width, height, theme);
      return pen.drawn();
    },
  };
}

const tickText = (value) => String(value).replace('-', '−');

// Below a box: numbers from `from` to `to`, and what they mean.
export function paintXAxis(pen, { left, right, bottom }, [from, to], label, theme) {
  for (const value of ticks(from, to, Math.max(2, Math.floor((right - left) / 90)))) {
    const x = left + ((right - left) * (value - from)) / (to - from);
    pen.line(x, bottom, x, bottom + 4, theme.muted);
    pen.text(x, bottom + 13, tickText(value), theme.muted, 'middle');
  }
  pen.text((left + right) / 2, bottom + 29, label, theme.muted, 'middle');
}

export function paintYAxis(pen, { left, top, bottom }, [from, to], theme) {
  for (const value of ticks(from, to, Math.max(2, Math.floor((bottom - top) / 45)))) {
    const y = bottom - ((bottom - top) * (value - from)) / (to - from);
    pen.line(left - 4, y, left, y, theme.muted);
    pen.text(left - 7, y, tickText(value), theme.muted, 'end');
  }
}

// Colours for energies in decibels below the largest; null where there is next to nothing.
const RANGE = 40;
const STEPS = 64;

export function energyColours(largest, theme) {
  const colours = Array.from({ length: STEPS + 1 }, (_, i) => `rgb(${theme.shade(i / STEPS).join(',')})`);
  return (magnitude) => {
    const step = Math.round(STEPS * (1 + (20 * Math.log10(magnitude / largest)) / RANGE));
    return step > 0 ? colours[Math.min(step, STEPS)] : null;
  };
}

// The scale of those colours, ending at `right`.
export function paintEnergyScale(pen, right, y, theme) {
  const width = 96;
  const left = right - width - 34;
  for (let i = 0; i < 32; i += 1) {
    pen.rect(left + (i * width) / 32, y - 5, width / 32 + 0.3, 10, `rgb(${theme.shade((i + 0.5) / 32).join(',')})`);
  }
  pen.frame(left, y - 5, width, 10, theme.grid);
  pen.text(left - 6, y, `−${RANGE}`, theme.muted, 'end');
  pen.text(left + width + 6, y, '0 dB', theme.muted);
}
