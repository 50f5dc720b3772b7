// What the panel "A wavelet" computes in the worker. `wavelet` is a record of wavelets.js.
//
//   filters    the taps with their positions, the frequency response, and where the functions live
//   functions  scaling function, wavelet and their duals, of the inverse transform or at points
//   packet     one packet function and its dual
//   ends       the functions next to an end of the data

import { LEVELS, LEVELS_AT_ENDS } from './levels.js';
import { Matrix } from './undula.js';

const SAMPLES = 256; // more than twice as many as any filter has taps, so that nothing wraps around
const MIDDLE = SAMPLES / 2;
const RESPONSE_POINTS = 512;
const TABLE = 32; // points to a unit of the pack's own table
const MOST_POINTS = 8192; // of a packet function
const REPORT_EVERY = 512;

function unit(length, place) {
  const column = new Float64Array(length);
  column[place] = 1;
  return column;
}

const lastOf = ({ first, taps }) => first + taps.length - 1;

// ---- Filters -----------------------------------------------------------------------------------------------

// Without the zeros around it: { first: the position of its first tap, taps }.
function trimmed(valueAt) {
  let first = -MIDDLE,
    last = MIDDLE - 1;
  while (first < last && valueAt(first) === 0) first += 1;
  while (last > first && valueAt(last) === 0) last -= 1;
  return { first, taps: Float64Array.from({ length: last - first + 1 }, (_, i) => valueAt(first + i)) };
}

// The filters with their positions, as the transform applies them: coefficient k of the analysis is the sum
// of tap q times sample 2k + q, and in the synthesis it adds tap q to sample 2k + q.
function analysisFilters(undula, filter) {
  const responses = [0, 1].map((odd) => undula.call('dwt', [unit(SAMPLES, MIDDLE + odd), 1, filter]).re);
  const channel = (start) =>
    trimmed((q) => {
      const odd = Math.abs(q % 2);
      const k = ((MIDDLE + odd - q) / 2) % MIDDLE;
      return responses[odd][start + k];
    });
  return { low: channel(0), high: channel(MIDDLE) };
}

function synthesisFilters(undula, filter) {
  const channel = (start) => {
    const response = undula.call('idwt', [unit(SAMPLES, start + MIDDLE / 2), 1, filter]).re;
    return trimmed((q) => response[MIDDLE + q]);
  };
  return { low: channel(0), high: channel(MIDDLE) };
}

const filterOf = (undula, { function: name, arguments: orders }) => undula.call(name, orders);

function banksOf(undula, wavelet) {
  const filter = filterOf(undula, wavelet);
  return { analysis: analysisFilters(undula, filter), synthesis: synthesisFilters(undula, filter) };
}

// The magnitude of the filter's Fourier sum, at frequencies from 0 to half the sampling rate.
function responseOf({ taps }) {
  return Float64Array.from({ length: RESPONSE_POINTS + 1 }, (_, i) => {
    const angle = (Math.PI * i) / RESPONSE_POINTS;
    let re = 0,
      im = 0;
    taps.forEach((tap, q) => {
      re += tap * Math.cos(angle * q);
      im -= tap * Math.sin(angle * q);
    });
    return Math.hypot(re, im);
  });
}

// Where a packet function lives: [from, to]. The digits of the Gray code of its index say which filters make
// it.
function supportOf(bank, index) {
  let support = [bank.low.first, lastOf(bank.low)];
  const path = (index ^ (index >> 1)).toString(2);
  for (const digit of index ? path : '') {
    const filter = digit === '1' ? bank.high : bank.low;
    support = [(support[0] + filter.first) / 2, (support[1] + lastOf(filter)) / 2];
  }
  return support;
}

// Orthonormal wavelets are their own duals.
const sidesOf = (wavelet) => (wavelet.function === 'Bspline' ? ['analysis', 'synthesis'] : ['analysis']);

const filtersOf = (bank) => ({
  ...bank,
  response: { low: responseOf(bank.low), high: responseOf(bank.high) },
  support: { scaling: supportOf(bank, 0), wavelet: supportOf(bank, 1) },
});

function filters(undula, { wavelet }) {
  const { analysis, synthesis } = banksOf(undula, wavelet);
  const frequency = Float64Array.from({ length: RESPONSE_POINTS + 1 }, (_, i) => i / (2 * RESPONSE_POINTS));
  return { frequency, analysis: filtersOf(analysis), synthesis: filtersOf(synthesis) };
}

// ---- Functions ---------------------------------------------------------------------------------------------

// The grid points of a support, with one beyond each end, where the function is 0.
function gridOver([from, to], perUnit) {
  const first = Math.floor(from * perUnit) - 1;
  const last = Math.ceil(to * perUnit) + 1;
  return Float64Array.from({ length: last - first + 1 }, (_, i) => (first + i) / perUnit);
}

function curveAtPoints(undula, name, wavelet, support) {
  const x = gridOver(support, TABLE);
  return { x, y: x.map((point) => undula.call(name, [point, wavelet.name])) };
}

const momentOf = ({ first, taps }) => taps.reduce((sum, tap, i) => sum + tap * (first + i), 0) / Math.SQRT2;

// A function is what the inverse transform makes of one coefficient, drawn ever finer. The samples of level L
// are its values at (i + moment) / 2^L, with the first moment of the scaling function.
function curveOfInverse(undula, argumentsOf, bank, support, channel) {
  const perUnit = 2 ** LEVELS;
  const before = 1 - Math.floor(support[0]);
  const units = before + Math.ceil(support[1]) + 1;
  const place = (channel === 'high' ? units : 0) + before;
  const coefficients = unit(units * perUnit, place);
  const samples = undula.call('idwt', [coefficients, LEVELS, ...argumentsOf]).re;
  const moment = momentOf(bank.low);
  return {
    x: Float64Array.from(samples, (_, i) => (i + moment) / perUnit - before),
    y: samples.map((value) => Math.sqrt(perUnit) * value),
    place,
  };
}

// The pair with its two filters exchanged, and where they begin: its synthesis is the analysis of the pair.
function exchanged(undula, wavelet, { analysis, synthesis }) {
  const filter = filterOf(undula, wavelet);
  if (filter.cols === 1) return [filter];
  const { rows, re } = filter;
  const columns = Float64Array.of(...re.subarray(rows), ...re.subarray(0, rows));
  const offsets = Float64Array.of(synthesis.low.first, analysis.low.first);
  return [new Matrix(rows, 2, columns, null), new Matrix(1, 2, offsets, null)];
}

function functions(undula, { wavelet, drawn }) {
  const banks = banksOf(undula, wavelet);
  const argumentsOf = { analysis: exchanged(undula, wavelet, banks), synthesis: [filterOf(undula, wavelet)] };
  const names = { analysis: ['father', 'mother'], synthesis: ['dlfather', 'dlmother'] };
  const curve = (side, channel) => {
    const support = supportOf(banks[side], channel);
    const made =
      drawn === 'points'
        ? curveAtPoints(undula, names[side][channel], wavelet, support)
        : curveOfInverse(undula, argumentsOf[side], banks[side], support, channel ? 'high' : 'low');
    return { ...made, support };
  };
  const both = (side) => ({
    scaling: curve(side, 0),
    wavelet: curve(side, 1),
    moment: momentOf(banks[side].low),
  });
  return Object.fromEntries(sidesOf(wavelet).map((side) => [side, both(side)]));
}

// As fine as the pack knows the function, unless that are too many points.
function packetGrid(support, index) {
  let perUnit = TABLE * 2 ** (index ? Math.floor(Math.log2(index)) + 1 : 0);
  while ((support[1] - support[0]) * perUnit > MOST_POINTS) perUnit /= 2;
  return gridOver(support, perUnit);
}

function packet(undula, { wavelet, index }, report) {
  const banks = banksOf(undula, wavelet);
  const filter = filterOf(undula, wavelet);
  const names = { analysis: 'wavelet', synthesis: 'dlwavelet' };
  const sides = sidesOf(wavelet);
  const curves = sides.map((side, done) => {
    const support = supportOf(banks[side], index);
    const x = packetGrid(support, index);
    const y = x.map((point, i) => {
      if (i % REPORT_EVERY === 0) report((done + i / x.length) / sides.length, `Packet ${index}`);
      return undula.call(names[side], [point, 0, 0, index, filter]);
    });
    return [side, { x, y, support }];
  });
  return Object.fromEntries(curves);
}

// ---- The ends of the data ----------------------------------------------------------------------------------

const INVERSE = { periodic: 'idwt', symmetric: 'idwts', interval: 'idwti' };

// What the inverse transform makes of the coefficients next to an end, one after the other. Of the interval's
// functions the samples next to the end are left out: they are coefficients of its edge functions, not values.
function ends(undula, { wavelet, boundary, side }) {
  const filter = filterOf(undula, wavelet);
  const taps = Math.max(...wavelet.taps);
  const perUnit = 2 ** LEVELS_AT_ENDS;
  const units = 2 * taps;
  const edge = boundary === 'interval' ? taps / 2 : 0;
  const right = side === 'right';

  // From the end inwards.
  const curve = (channel, place) => {
    const coefficients = unit(units * perUnit, channel * units + (right ? units - 1 - place : place));
    const samples = undula.call(INVERSE[boundary], [coefficients, LEVELS_AT_ENDS, filter]).re;
    const values = samples.map((value) => Math.sqrt(perUnit) * value);
    return (right ? values.reverse() : values).subarray(edge, (units / 2) * perUnit);
  };
  const curves = (channel) => Array.from({ length: edge || 4 }, (_, place) => curve(channel, place));
  const [scaling, wavelets] = [curves(0), curves(1)];
  const shown = Math.max(...[...scaling, ...wavelets].map(visibleLength));
  const x = Float64Array.from({ length: shown }, (_, i) => (edge + i) / perUnit);
  const cut = (values) => (right ? values.slice(0, shown).reverse() : values.slice(0, shown));
  return {
    x: right ? x.reverse().map((value) => -value - 1 / perUnit) : x,
    scaling: scaling.map(cut),
    wavelet: wavelets.map(cut),
    units,
  };
}

// As far as the curve is more than a thousandth of its size.
function visibleLength(values) {
  const size = values.reduce((largest, value) => Math.max(largest, Math.abs(value)), 0);
  return values.findLastIndex((value) => Math.abs(value) > size / 1000) + 1;
}

export const jobs = { filters, functions, packet, ends };
