// Charts as files. The SVG is written from the record of the chart; the PNG is made of the SVG.

const WIDTH = 800,
  HEIGHT = 440;
const MARGIN = { left: 76, right: 20, top: 44, bottom: 56 };
const FONT = 'font-family="system-ui, sans-serif"';

export const escaped = (text) =>
  String(text ?? '').replace(/[&<>"]/g, (c) => ({ '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;' })[c]);

const short = (value) => String(Number(value.toFixed(2)));

const lookOf = (index, theme) => ({
  stroke: theme.series[index % theme.series.length],
  dash: theme.dashes[index % theme.dashes.length].join(' ') || 'none',
});

// Round numbers from `from` to `to`, about as many as wanted.
export function ticks(from, to, wanted) {
  const rough = (to - from) / wanted;
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = power * [1, 2, 5, 10].find((each) => each * power >= rough * 0.999);
  const first = Math.ceil(from / step - 1e-9);
  const count = Math.floor(to / step + 1e-9) - first + 1;
  return Array.from({ length: Math.max(count, 0) }, (_, i) => Number(((first + i) * step).toPrecision(12)));
}

// Of the points that fall on the same pixel only first, least, greatest and last.
function thinned(points) {
  const kept = [];
  let cell = [];
  const close = () => {
    const values = cell.map(([, y]) => y);
    const wanted = [
      0,
      values.indexOf(Math.min(...values)),
      values.indexOf(Math.max(...values)),
      cell.length - 1,
    ];
    kept.push(...[...new Set(wanted)].sort((a, b) => a - b).map((i) => cell[i]));
  };
  for (const point of points) {
    if (cell.length && Math.floor(point[0]) !== Math.floor(cell[0][0])) {
      close();
      cell = [];
    }
    cell.push(point);
  }
  if (cell.length) close();
  return kept;
}

function stepped(points) {
  return points.flatMap((point, i) => (i ? [[point[0], points[i - 1][1]], point] : [point]));
}

// Where a series lies on the paper; one point beyond each end, so that lines reach the frame. NaN parts it.
function runsOf({ x, y }, place, [from, to]) {
  let first = 0,
    last = x.length - 1;
  while (first < last && x[first + 1] < from) first += 1;
  while (last > first && x[last - 1] > to) last -= 1;
  const runs = [[]];
  for (let i = first; i <= last; i += 1) {
    if (Number.isFinite(y[i])) runs[runs.length - 1].push([place.x(x[i]), place.y(y[i])]);
    else runs.push([]);
  }
  return runs.filter((run) => run.length);
}

// As many stems as there are pixels at most; points only where they stay apart.
function drawnStems(points, zero, stroke, fill) {
  const columns = new Map();
  for (const [x, y] of points) {
    const column = Math.round(2 * x);
    const [, least, greatest] = columns.get(column) ?? [x, zero, zero];
    columns.set(column, [x, Math.min(least, y), Math.max(greatest, y)]);
  }
  const stems = [...columns.values()].map(
    ([x, least, greatest]) => `M${short(x)} ${short(least)}V${short(greatest)}`,
  );
  const marks =
    points.length > WIDTH / 8
      ? []
      : points.map(([x, y]) => `<circle cx="${short(x)}" cy="${short(y)}" r="3.5"/>`);
  const inside = `<path d="${stems.join('')}"/>${marks.join('')}`;
  return `<g stroke="${stroke}" stroke-width="1.5" fill="${fill}">${inside}</g>`;
}

function drawnSeries(series, index, place, view, theme) {
  const { stroke, dash } = lookOf(index, theme);
  const runs = runsOf(series, place, view.x);
  if (series.kind === 'stems') {
    return drawnStems(runs.flat(), place.y(0), stroke, index % 2 ? theme.background : stroke);
  }
  const lines = runs.map((run) => {
    const points = thinned(series.kind === 'steps' ? stepped(run) : run);
    return `<polyline points="${points.map((point) => point.map(short).join(',')).join(' ')}"/>`;
  });
  return (
    `<g stroke-linejoin="round" stroke="${stroke}" stroke-width="1.75" stroke-dasharray="${dash}" fill="none">` +
    `${lines.join('')}</g>`
  );
}

function axes(record, place, view, theme) {
  const { left, right, top, bottom } = MARGIN;
  const [xs, ys] = [ticks(...view.x, 8), ticks(...view.y, 6)];
  const text = (value) => String(value).replace('-', '−');
  const grid = [
    ...xs.map((x) => `<path d="M${short(place.x(x))} ${top}V${HEIGHT - bottom}"/>`),
    ...ys.map((y) => `<path d="M${left} ${short(place.y(y))}H${WIDTH - right}"/>`),
  ];
  const middle = (x, y, name) => `<text x="${short(x)}" y="${y}" text-anchor="middle">${escaped(name)}</text>`;
  const names = [
    ...xs.map((x) => middle(place.x(x), HEIGHT - bottom + 18, text(x))),
    ...ys.map((y) => `<text x="${left - 8}" y="${short(place.y(y) + 4)}" text-anchor="end">${text(y)}</text>`),
    middle((left + WIDTH - right) / 2, HEIGHT - bottom + 40, record.xLabel),
    `<text transform="translate(18 ${(top + HEIGHT - bottom) / 2}) rotate(-90)" text-anchor="middle">` +
      `${escaped(record.yLabel)}</text>`,
  ];
  const lines = `<g stroke="${theme.grid}">${grid.join('')}</g>`;
  return `${lines}<g fill="${theme.muted}" ${FONT} font-size="12">${names.join('')}</g>`;
}

// The mark of a series in a legend, from x on, with its middle at y.
export function swatchSvg(kind, index, theme, x, y) {
  const { stroke, dash } = lookOf(index, theme);
  if (kind !== 'stems') {
    return `<path d="M${x} ${y}h26" stroke="${stroke}" stroke-width="2" stroke-dasharray="${dash}"/>`;
  }
  const fill = index % 2 ? theme.background : stroke;
  return `<circle cx="${x + 13}" cy="${y}" r="3.5" stroke="${stroke}" stroke-width="1.5" fill="${fill}"/>`;
}

function legend(series, theme) {
  let x = MARGIN.left;
  const entries = series.map(({ label, kind }, i) => {
    const entry = `${swatchSvg(kind, i, theme, x, 36)}<text x="${x + 32}" y="40">${escaped(label)}</text>`;
    x += 48 + 7 * String(label).length;
    return entry;
  });
  return `<g fill="${theme.foreground}" ${FONT} font-size="12">${entries.join('')}</g>`;
}

function sheet(title, description, width, height, theme, inside) {
  const size = `width="${width}" height="${height}" viewBox="0 0 ${width} ${height}"`;
  return (
    `<svg xmlns="http://www.w3.org/2000/svg" ${size}>` +
    `<title>${escaped(title)}</title><desc>${escaped(description)}</desc>` +
    `<rect width="${width}" height="${height}" fill="${theme.background}"/>${inside}</svg>`
  );
}

// `view` is what is shown of both axes: { x: [from, to], y: [from, to] }.
export function lineSvg(record, view, theme) {
  const { left, right, top, bottom } = MARGIN;
  const [width, height] = [WIDTH - left - right, HEIGHT - top - bottom];
  const place = {
    x: (x) => left + (width * (x - view.x[0])) / (view.x[1] - view.x[0]),
    y: (y) => top + (height * (view.y[1] - y)) / (view.y[1] - view.y[0]),
  };
  const series = record.series.map((each, i) => drawnSeries(each, i, place, view, theme));
  const look = `${FONT} font-size="16" font-weight="600" fill="${theme.foreground}"`;
  const inside = [
    `<clipPath id="frame"><rect x="${left}" y="${top}" width="${width}" height="${height}"/></clipPath>`,
    axes(record, place, view, theme),
    `<g clip-path="url(#frame)">${series.join('')}</g>`,
    `<text x="${left}" y="22" ${look}>${escaped(record.title)}</text>`,
    legend(record.series, theme),
  ];
  return sheet(record.title, record.description, WIDTH, HEIGHT, theme, inside.join(''));
}

export function pictureSvg(record, width, height, theme) {
  return sheet(record.title, record.description, width, height, theme, record.svg(width, height, theme));
}

export async function pngOfSvg(text, scale = 2) {
  const address = URL.createObjectURL(new Blob([text], { type: 'image/svg+xml' }));
  try {
    const image = new Image();
    image.src = address;
    await image.decode();
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = [image.width * scale, image.height * scale];
    canvas.getContext('2d').drawImage(image, 0, 0, canvas.width, canvas.height);
    return await new Promise((resolve) => {
      canvas.toBlob(resolve, 'image/png');
    });
  } finally {
    URL.revokeObjectURL(address);
  }
}
