// Charts: a title, a picture, a legend, and buttons for zoom, PNG and SVG.
//
//   const chart = charts.line(parent, {
//     title, xLabel, yLabel,
//     series: [{ label, x: Float64Array (ascending), y: Float64Array, kind: 'line' | 'stems' | 'steps' }],
//     description,                 what is to be seen, in numbers, for those who do not see it
//     height, xRange, yRange,      optional: pixels of the page, [from, to], [from, to]
//     whole: true,                 optional: x counts something, so that only whole numbers stand at its axis
//     file,                        optional: the name of exported files
//   });
//   chart.update(record);          fast: keeps the zoom if x goes as far as before
//
// Series may share one x, which is fastest if it is the same array, or have one each. `steps` hold each value
// up to the next x. NaN leaves a gap. A zoom is made by dragging, with the buttons, or with + - 0 and arrows
// with Shift on the chart; a double click shows the whole again. What lies under the pointer, which arrows move too, is
// told in the legend.
//
//   const picture = charts.picture(parent, {
//     title, description, height, file,
//     aspect,                             optional, in place of height: width over height
//     draw(context, width, height, theme),  in pixels of the page; see theme.js for the colours
//     svg(width, height, theme),          optional: the same as SVG elements, a text
//     natural(),                          optional: a canvas to be saved as PNG in place of what is drawn
//     tell(x, y, width, height),          optional: a text about the point, from 0, 0 (top left) to 1, 1
//   });
//   picture.update(record);
//
// Both have `element` and `destroy()`.

import uPlot from './uPlot.esm.js';
import { button, download, make } from './controls.js';
import { onThemeChange, theme } from './theme.js';
import { lineSvg, pictureSvg, pngOfSvg, swatchSvg } from './export.js';

const HEIGHT = 260;
const FONT = '12px system-ui, sans-serif';

export const formatted = (value) =>
  value === null || value === undefined ? '' : String(Number(value.toPrecision(6)));

const fileName = (record) => record.file ?? record.title.toLowerCase().replace(/[^a-z0-9]+/g, '-');

// What both kinds have around their picture.
function frameOf(parent, record) {
  const title = make('span', { class: 'title' }, record.title);
  const tools = make('div', { class: 'tools', role: 'group', 'aria-label': `${record.title}: view and files` });
  const box = make('div', { class: 'plot', role: 'img', tabindex: '0' });
  const legend = make('div', { class: 'legend', 'aria-live': 'polite' });
  const element = make('figure', { class: 'chart' }, make('figcaption', {}, title, tools), box, legend);
  parent.append(element);
  const name = (newRecord) => {
    title.textContent = newRecord.title;
    box.setAttribute('aria-label', `${newRecord.title}. ${newRecord.description ?? ''}`);
  };
  name(record);
  return { element, box, legend, tools, name };
}

function tool(frame, text, label, onClick) {
  const { element } = button({ text, label, onClick });
  element.title = label;
  frame.tools.append(element);
}

// Calls `resized` with the width now and whenever it changes.
function watchWidth(box, resized) {
  let width = 0;
  const observer = new ResizeObserver(() => {
    const now = Math.floor(box.clientWidth);
    if (now === width || now === 0) return; // 0 while the panel is hidden
    width = now;
    resized(width);
  });
  observer.observe(box);
  return () => observer.disconnect();
}

function takeKeys(box, keys) {
  box.addEventListener('keydown', (event) => {
    const key = event.key.startsWith('Arrow') && event.shiftKey ? `Shift ${event.key}` : event.key;
    if (!keys[key] || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    keys[key]();
  });
}

// ---- Lines -------------------------------------------------------------------------------------------------

const sameX = (a, b) => a === b || (a.length === b.length && a.every((value, i) => value === b[i]));

function alignedData(series) {
  if (series.length === 0) return [[]];
  if (series.every(({ x }) => sameX(x, series[0].x))) return [series[0].x, ...series.map(({ y }) => y)];
  return uPlot.join(
    series.map(({ x, y }) => [x, y]),
    series.map(() => [0, 0]),
  );
}

function extent(series) {
  const from = Math.min(...series.map(({ x }) => x[0] ?? Infinity));
  const to = Math.max(...series.map(({ x }) => x[x.length - 1] ?? -Infinity));
  if (!(from <= to)) return [0, 1];
  const room = series.some(({ kind }) => kind === 'stems') ? 0.02 * (to - from) : 0;
  return from === to ? [from - 1, to + 1] : [from - room, to + room];
}

function padded(min, max) {
  if (min === null || max === null || !Number.isFinite(max - min)) return [-1, 1];
  const room = max > min ? 0.06 * (max - min) : Math.abs(max) || 1;
  return [min - room, max + room];
}

// Where values lie on the canvas: uPlot's own function, once for the ends of the scale and not for each sample.
function placeOn(u, key) {
  const { min, max } = u.scales[key];
  const [first, last] = [u.valToPos(min, key, true), u.valToPos(max, key, true)];
  return (value) => first + ((last - first) * (value - min)) / (max - min);
}

// One stroke for each column of pixels, however many stems stand in it.
function stemPaths(u, index, from, to) {
  const path = new Path2D();
  const [xs, ys] = [u.data[0], u.data[index]];
  const [xPlace, yPlace] = [placeOn(u, 'x'), placeOn(u, 'y')];
  const zero = yPlace(0);
  let column = -1,
    top = zero,
    bottom = zero;
  const draw = () => {
    path.moveTo(column, top);
    path.lineTo(column, bottom);
  };
  for (let i = from; i <= to; i += 1) {
    if (ys[i] === null || ys[i] === undefined) continue;
    const place = Math.round(xPlace(xs[i]));
    if (place !== column) {
      if (column >= 0) draw();
      [column, top, bottom] = [place, zero, zero];
    }
    const end = yPlace(ys[i]);
    top = Math.min(top, end);
    bottom = Math.max(bottom, end);
  }
  if (column >= 0) draw();
  return { stroke: path, fill: null, clip: null, band: null, gaps: null, flags: 0 };
}

const sparse = (u, _, from, to) => (to - from) * 7 < u.width;

// Points on whole pixels can be thinned, and lines of one pixel are painted in a third of the time of wider ones, which
// makes long series fast; short ones are smoother without.
const isDense = (x) => x.length > 16384;

function lineWidth(kind, x) {
  if (isDense(x)) return 1;
  return kind === 'stems' ? 1.5 : 1.75;
}

function seriesOptions({ label, kind, x }, index, colours) {
  const stroke = colours.series[index % colours.series.length];
  const stems = kind === 'stems';
  const paths = { stems: stemPaths, steps: uPlot.paths.stepped({ align: 1 }) }[kind];
  const fill = index % 2 ? colours.background : stroke;
  return {
    label,
    stroke,
    width: lineWidth(kind, x),
    dash: stems ? [] : colours.dashes[index % colours.dashes.length],
    pxAlign: isDense(x) ? 1 : 0,
    spanGaps: true,
    points: stems ? { show: sparse, size: 7, fill, stroke } : { show: false },
    ...(paths ? { paths } : {}),
  };
}

const tickText = (value) => String(Number(value.toPrecision(8))).replace('-', '−');

const WHOLE_STEPS = [1, 2, 5]
  .flatMap((digit) => Array.from({ length: 9 }, (_, i) => digit * 10 ** i))
  .sort((a, b) => a - b);

function axisOptions(label, side, colours) {
  const line = { stroke: colours.grid, width: 1 };
  return {
    side,
    label,
    stroke: colours.muted,
    font: FONT,
    labelFont: FONT,
    labelSize: 20,
    size: side === 3 ? 56 : 30,
    grid: line,
    ticks: line,
    values: (_, splits) => splits.map(tickText),
  };
}

function plotOptions(record, width, colours, hooks) {
  return {
    width,
    height: record.height ?? HEIGHT,
    legend: { show: false },
    cursor: {
      drag: { x: true, y: false, dist: 5 },
      y: false,
      points: { size: 6 },
      bind: { dblclick: () => hooks.reset },
    },
    scales: {
      x: { time: false, auto: false, range: (_, min, max) => [min, max] },
      y: { range: (_, min, max) => hooks.range() ?? padded(min, max) },
    },
    axes: [
      { ...axisOptions(record.xLabel, 2, colours), ...(record.whole ? { incrs: WHOLE_STEPS } : {}) },
      axisOptions(record.yLabel, 3, colours),
    ],
    series: [{}, ...record.series.map((each, i) => seriesOptions(each, i, colours))],
    hooks: { setCursor: [hooks.point] },
    padding: [10, 12, 0, 0],
  };
}

function swatch({ kind }, index, colours) {
  const element = make('span', { class: 'swatch', 'aria-hidden': 'true' });
  element.innerHTML = `<svg width="26" height="10">${swatchSvg(kind, index, colours, 0, 5)}</svg>`;
  return element;
}

// The names of the series, and the values where the pointer is.
function fillLegend(legend, record, colours) {
  const place = make('span', { class: 'place' });
  const values = record.series.map(() => make('span', { class: 'number' }));
  const entries = record.series.map((each, i) =>
    make('span', { class: 'entry' }, swatch(each, i, colours), ` ${each.label} `, values[i]),
  );
  legend.replaceChildren(...entries, place);
  return (plot) => {
    const { idx } = plot.cursor;
    const known = idx !== null && idx !== undefined;
    place.textContent = known ? `at ${record.xLabel ?? 'x'} ${formatted(plot.data[0][idx])}` : '';
    values.forEach((value, i) => {
      value.textContent = known ? formatted(plot.data[i + 1][idx]) : '';
    });
  };
}

// What makes another chart necessary, and not only other data.
const shapeOf = ({ xLabel, yLabel, height, series }) =>
  JSON.stringify([xLabel, yLabel, height, series.map(({ label, kind, x }) => [label, kind, isDense(x)])]);

export function line(parent, record) {
  const frame = frameOf(parent, record);
  let current = record;
  let width = 0;
  let plot = null;
  let point = () => {};

  const whole = () => current.xRange ?? extent(current.series);
  const view = (from, to) => plot?.setScale('x', { min: from, max: to });
  const reset = () => {
    view(...whole());
    return null;
  };

  function build() {
    if (!width) return;
    const kept = plot && [plot.scales.x.min, plot.scales.x.max];
    plot?.destroy();
    const colours = theme();
    const hooks = { reset, range: () => current.yRange, point: (u) => point(u) };
    point = fillLegend(frame.legend, current, colours);
    plot = new uPlot(plotOptions(current, width, colours, hooks), alignedData(current.series), frame.box);
    view(...(kept ?? whole()));
  }

  function update(newRecord) {
    const before = whole();
    const sameShape = shapeOf(newRecord) === shapeOf(current);
    current = newRecord;
    frame.name(current);
    if (!plot) return;
    const after = whole();
    const kept = before[0] === after[0] && before[1] === after[1];
    const shown = kept ? [plot.scales.x.min, plot.scales.x.max] : after;
    if (!sameShape) build();
    else plot.setData(alignedData(current.series), false);
    view(...shown);
  }

  // Keeps the middle; `factor` below 1 shows less.
  function zoom(factor, shift = 0) {
    if (!plot) return;
    const [first, last] = whole();
    const { min, max } = plot.scales.x;
    const half = Math.min((max - min) * factor, last - first) / 2;
    const middle = (min + max) / 2 + shift * (max - min);
    const kept = Math.min(Math.max(middle, first + half), last - half);
    view(kept - half, kept + half);
  }

  // Where the values are read, from the middle on; a hundred steps from one side to the other.
  function readValue(direction) {
    if (!plot) return;
    const [xs] = plot.data;
    const [first, last] = [plot.scales.x.min, plot.scales.x.max].map((value) => plot.valToIdx(value));
    const step = Math.max(1, Math.round((last - first) / 100));
    const now = plot.cursor.idx;
    const next = now === null || now === undefined ? Math.round((first + last) / 2) : now + direction * step;
    const left = plot.valToPos(xs[Math.min(Math.max(next, first), last)], 'x');
    plot.setCursor({ left, top: 0 });
  }

  takeKeys(frame.box, {
    '+': () => zoom(0.5),
    '=': () => zoom(0.5),
    '-': () => zoom(2),
    0: reset,
    ArrowLeft: () => readValue(-1),
    ArrowRight: () => readValue(1),
    'Shift ArrowLeft': () => zoom(1, -0.2),
    'Shift ArrowRight': () => zoom(1, 0.2),
  });
  frame.box.addEventListener('blur', () => plot?.setCursor({ left: -10, top: -10 }));

  const svg = () => {
    const { x, y } = plot.scales;
    return lineSvg(current, { x: [x.min, x.max], y: [y.min, y.max] }, theme());
  };
  tool(frame, '+', 'Zoom in', () => zoom(0.5));
  tool(frame, '−', 'Zoom out', () => zoom(2));
  tool(frame, '0', 'Show the whole', reset);
  tool(frame, 'PNG', 'Save as PNG', async () => download(await pngOfSvg(svg()), `${fileName(current)}.png`));
  tool(frame, 'SVG', 'Save as SVG', () =>
    download(new Blob([svg()], { type: 'image/svg+xml' }), `${fileName(current)}.svg`),
  );

  const ends = [
    onThemeChange(build),
    watchWidth(frame.box, (newWidth) => {
      width = newWidth;
      if (plot) plot.setSize({ width, height: current.height ?? HEIGHT });
      else build();
    }),
  ];
  return {
    element: frame.element,
    update,
    destroy() {
      ends.forEach((end) => end());
      plot?.destroy();
      frame.element.remove();
    },
  };
}

// ---- Pictures ----------------------------------------------------------------------------------------------

const TALLEST = 640;
const STEP = 1 / 64;  // of the point that arrows move

const heightOf = ({ height, aspect }, width) =>
  (aspect ? Math.min(Math.max(Math.round(width / aspect), HEIGHT / 2), TALLEST) : height ?? HEIGHT);

function drawn(record, width, scale, colours) {
  const height = heightOf(record, width);
  const canvas = make('canvas', { width: Math.round(width * scale), height: Math.round(height * scale) });
  const context = canvas.getContext('2d');
  context.scale(scale, scale);
  context.fillStyle = colours.background;
  context.fillRect(0, 0, width, height);
  record.draw(context, width, height, colours);
  return canvas;
}

export function picture(parent, record) {
  const frame = frameOf(parent, record);
  let current = record;
  let width = 0;
  let waiting = 0;

  function redraw() {
    waiting = 0;
    if (!width) return;
    const canvas = drawn(current, width, devicePixelRatio, theme());
    canvas.style.cssText = `width: ${width}px; height: ${heightOf(current, width)}px`;
    frame.box.replaceChildren(canvas);
  }
  const soon = () => {
    waiting = waiting || requestAnimationFrame(redraw);
  };

  const point = { x: 0.5, y: 0.5 };
  function tell(x, y) {
    Object.assign(point, { x, y });
    const { width: across, height: down } = frame.box.getBoundingClientRect();
    const isInside = x >= 0 && x < 1 && y >= 0 && y < 1;
    frame.legend.textContent = isInside ? current.tell?.(x, y, across, down) ?? '' : '';
  }

  frame.box.addEventListener('pointermove', (event) => {
    const box = frame.box.getBoundingClientRect();
    tell((event.clientX - box.left) / box.width, (event.clientY - box.top) / box.height);
  });
  const moved = (value, by) => Math.min(Math.max(value + by, 0), 1 - STEP / 2);
  takeKeys(frame.box, {
    ArrowLeft: () => tell(moved(point.x, -STEP), point.y),
    ArrowRight: () => tell(moved(point.x, STEP), point.y),
    ArrowUp: () => tell(point.x, moved(point.y, -STEP)),
    ArrowDown: () => tell(point.x, moved(point.y, STEP)),
  });
  frame.box.addEventListener('pointerleave', () => frame.legend.replaceChildren());

  const save = (blob, kind) => download(blob, `${fileName(current)}.${kind}`);
  tool(frame, 'PNG', 'Save as PNG', () =>
    (current.natural?.() ?? drawn(current, width, 2, theme())).toBlob((blob) => save(blob, 'png'), 'image/png'),
  );
  if (record.svg) {
    tool(frame, 'SVG', 'Save as SVG', () =>
      save(
        new Blob([pictureSvg(current, width, heightOf(current, width), theme())], { type: 'image/svg+xml' }),
        'svg',
      ),
    );
  }

  const ends = [
    onThemeChange(soon),
    watchWidth(frame.box, (newWidth) => {
      width = newWidth;
      redraw();
    }),
  ];
  return {
    element: frame.element,
    update(newRecord) {
      current = newRecord;
      frame.name(current);
      soon();
    },
    destroy() {
      ends.forEach((end) => end());
      cancelAnimationFrame(waiting);
      frame.element.remove();
    },
  };
}
