// Pictures of packets: the tiling of time and frequency by a basis, and the table with the packets that were chosen.
//
//   tilingPicture({ title, description, coefficients, basis: [[level, position]], windows, times: [from, to],
//                   highest, timeLabel, frequencyLabel, height })
//       `windows`: the packets are stretches of time, as of cosine packets, and not bands of frequencies.
//   tablePicture({ title, description, table: { columns, magnitudes }, count, basis, height })
//
// Both return a record for charts.picture. Packets are counted in the order of frequency.

import { packetPlace } from './packets.js';
import { energyColours, paintEnergyScale, paintXAxis, paintYAxis, pictureOf } from './pens.js';

const MOST_LINES = 128;  // between packets; more would hide them

function largestOf(numbers) {
  let largest = 0;
  for (let i = 0; i < numbers.length; i += 1) largest = Math.max(largest, Math.abs(numbers[i]));
  return largest || 1;
}

// The greatest magnitudes of equal parts, `wanted` of them at most.
function pooledParts(numbers, wanted) {
  const parts = new Float64Array(Math.min(numbers.length, Math.max(1, Math.ceil(wanted))));
  numbers.forEach((x, i) => {
    const place = Math.floor((i * parts.length) / numbers.length);
    parts[place] = Math.max(parts[place], Math.abs(x));
  });
  return parts;
}

// Neighbours of one colour become one rectangle.
function paintRuns(parts, colourOf, paint) {
  let begin = 0, colour = null;
  const close = (end) => colour && end > begin && paint(begin / parts.length, end / parts.length, colour);
  parts.forEach((magnitude, i) => {
    const next = colourOf(magnitude);
    if (next === colour) return;
    close(i);
    [begin, colour] = [i, next];
  });
  close(parts.length);
}

function boxOf(width, height) {
  const box = { left: 56, right: width - 12, top: 24, bottom: height - 40 };
  return { ...box, width: box.right - box.left, height: box.bottom - box.top };
}

function paintPacket(pen, box, numbers, { low, high, windows, colourOf }) {
  if (windows) {
    const [x, width] = [box.left + box.width * low, box.width * (high - low)];
    paintRuns(pooledParts(numbers, box.height), colourOf, (begin, end, colour) =>
      pen.rect(x, box.bottom - box.height * end, width, box.height * (end - begin), colour));
  } else {
    const [y, height] = [box.bottom - box.height * high, box.height * (high - low)];
    paintRuns(pooledParts(numbers, box.width), colourOf, (begin, end, colour) =>
      pen.rect(box.left + box.width * begin, y, box.width * (end - begin), height, colour));
  }
}

function paintBorder(pen, box, low, windows, theme) {
  const [x, y] = [box.left + box.width * low, box.bottom - box.height * low];
  if (windows) pen.line(x, box.top, x, box.bottom, theme.grid);
  else pen.line(box.left, y, box.right, y, theme.grid);
}

function paintTiling(pen, width, height, theme, record) {
  const { coefficients, basis, windows } = record;
  const box = boxOf(width, height);
  const colourOf = energyColours(largestOf(coefficients), theme);
  const background = `rgb(${theme.shade(0).join(',')})`;
  pen.rect(box.left, box.top, box.width, box.height, background);
  for (const [level, position] of basis) {
    const { start, length } = packetPlace(coefficients.length, level, position);
    const [low, high] = [position / 2 ** level, (position + 1) / 2 ** level];
    paintPacket(pen, box, coefficients.subarray(start, start + length), { low, high, windows, colourOf });
  }
  if (basis.length <= MOST_LINES) {
    basis.forEach(([level, position]) => paintBorder(pen, box, position / 2 ** level, windows, theme));
  }
  pen.frame(box.left, box.top, box.width, box.height, theme.muted);
  paintEnergyScale(pen, box.right, 11, theme);
  pen.text(4, 11, record.frequencyLabel, theme.muted);
  paintXAxis(pen, box, record.times, record.timeLabel, theme);
  paintYAxis(pen, box, [0, record.highest], theme);
}

// What lies under the pointer, which is told in shares of the whole picture.
function told(record, width, x, y) {
  const { coefficients, basis, windows, times, highest, height } = record;
  const box = boxOf(width, height);
  const across = (x * width - box.left) / box.width;
  const up = (box.bottom - y * height) / box.height;
  if (across < 0 || across >= 1 || up < 0 || up >= 1) return '';
  const [along, inside] = windows ? [across, up] : [up, across];
  const [level, position] = basis.find(([j, p]) => Math.floor(along * 2 ** j) === p);
  const { start, length } = packetPlace(coefficients.length, level, position);
  const value = coefficients[start + Math.floor(inside * length)];
  const time = times[0] + across * (times[1] - times[0]);
  return `level ${level}, packet ${position}; ${record.timeLabel} ${time.toPrecision(4)}, ` +
    `${record.frequencyLabel} ${(up * highest).toPrecision(3)}: ${value.toPrecision(4)}`;
}

export const tilingPicture = (record) => pictureOf(
  { ...record, tell: (x, y, width) => told(record, width, x, y) },
  (pen, width, height, theme) => paintTiling(pen, width, height, theme, record),
);

// ---- The table

const chosenColour = (theme) => theme.series[1];

function paintTable(pen, width, height, theme, { table, count, basis }) {
  const levels = table.magnitudes.length / table.columns;
  const box = boxOf(width, height);
  const rowHeight = box.height / levels;
  const colourOf = energyColours(largestOf(table.magnitudes), theme);
  pen.rect(box.left, box.top, box.width, box.height, `rgb(${theme.shade(0).join(',')})`);
  for (let level = 0; level < levels; level += 1) {
    const top = box.top + level * rowHeight;
    const row = table.magnitudes.subarray(level * table.columns, (level + 1) * table.columns);
    paintRuns(row, colourOf, (begin, end, colour) =>
      pen.rect(box.left + box.width * begin, top, box.width * (end - begin), rowHeight, colour));
    pen.line(box.left, top, box.right, top, theme.grid);
    pen.text(box.left - 7, top + rowHeight / 2, String(level), theme.muted, 'end');
  }
  for (const [level, position] of basis) {
    const { start, length } = packetPlace(count, level, position);
    const [x, wide] = [start, length].map((each) => (box.width * each) / count);
    pen.frame(box.left + x, box.top + level * rowHeight, wide, rowHeight, chosenColour(theme));
  }
  paintEnergyScale(pen, box.right, 11, theme);
  pen.text(4, 11, 'level', theme.muted);
  pen.text((box.left + box.right) / 2, box.bottom + 16, 'packets, from low to high frequency', theme.muted, 'middle');
}

export const tablePicture = (record) =>
  pictureOf(record, (pen, width, height, theme) => paintTable(pen, width, height, theme, record));
