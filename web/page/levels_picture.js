// The coefficients of a signal by level, the finest on top, each as wide as the time that it stands for.
//
//   levelsPicture({ title, description, coefficients, sizes, threshold, times: [from, to], timeLabel, memory })
//       a record for charts.picture. `sizes` are those of the parts, the smooth one first. Details have one
//       scale; those below the threshold are pale. The smooth part has a scale of its own. In `memory`, at
//       first an empty record, is kept what needs not be computed at each step of the slider.

import { paintXAxis, pictureOf } from './pens.js';

const ROW = 40;
const AXIS = 40;

export const levelName = (sizes, i) => (i ? `detail ${sizes.length - i}` : 'smooth');

export function partsOf(coefficients, sizes) {
  let start = 0;
  return sizes.map((size) => {
    start += size;
    return coefficients.subarray(start - size, start);
  });
}

// Least and greatest, and 0, of equal parts; not more of them than pixels.
function extremesOf(numbers, pixels) {
  const count = Math.min(numbers.length, Math.max(1, Math.floor(pixels)));
  const [least, greatest] = [new Float64Array(count), new Float64Array(count)];
  for (let i = 0; i < numbers.length; i += 1) {
    const place = Math.floor((i * count) / numbers.length);
    least[place] = Math.min(least[place], numbers[i]);
    greatest[place] = Math.max(greatest[place], numbers[i]);
  }
  return { least, greatest };
}

const largestOf = ({ least, greatest }) => greatest.reduce((most, x, i) => Math.max(most, x, -least[i]), 0);

function paintRow(pen, { left, width, middle, scale }, { least, greatest }, threshold, colours) {
  const wide = width / least.length;
  pen.line(left, middle, left + width, middle, colours.grid);
  for (let i = 0; i < least.length; i += 1) {
    const high = scale * greatest[i] - scale * least[i];
    if (high < 0.3) continue;
    const isKept = Math.max(greatest[i], -least[i]) >= threshold;
    pen.rect(left + i * wide, middle - scale * greatest[i], Math.max(wide, 1), high,
      isKept ? colours.kept : colours.dropped);
  }
}

export function levelsPicture(record) {
  const { coefficients, sizes, threshold, times, timeLabel, memory } = record;
  const height = ROW * sizes.length + AXIS;
  const extremes = (width) => {
    if (memory.coefficients !== coefficients || memory.width !== width) {
      const rows = partsOf(coefficients, sizes).map((numbers) => extremesOf(numbers, width));
      const largest = rows.slice(1).reduce((most, row) => Math.max(most, largestOf(row)), 0) || 1;
      Object.assign(memory, { coefficients, width, rows, largest });
    }
    return memory;
  };
  const paint = (pen, width, _, theme) => {
    const box = { left: 72, right: width - 12, bottom: height - AXIS };
    const { rows, largest } = extremes(box.right - box.left);
    const colours = { grid: theme.grid, kept: theme.series[0], dropped: theme.edge };
    rows.forEach((row, i) => {
      const middle = box.bottom - ROW * (i + 0.5);
      const scale = (0.46 * ROW) / (i ? largest : largestOf(row) || 1);
      paintRow(pen, { left: box.left, width: box.right - box.left, middle, scale }, row, i ? threshold : 0, colours);
      pen.text(box.left - 8, middle, levelName(sizes, i), theme.muted, 'end');
    });
    paintXAxis(pen, box, times, timeLabel, theme);
  };
  return pictureOf({ ...record, height }, paint);
}
