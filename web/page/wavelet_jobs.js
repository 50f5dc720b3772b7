// What the panel "A wavelet" computes in the worker.

const SAMPLES = 256;  // more than twice as many as any filter has taps, so that nothing wraps around
const MIDDLE = SAMPLES / 2;
const RESPONSE_POINTS = 512;

const unit = (length, place) => {
  const column = new Float64Array(length);
  column[place] = 1;
  return column;
};

// Without the zeros around it: { first: the position of its first tap, taps }.
function trimmed(valueAt) {
  let first = -MIDDLE, last = MIDDLE - 1;
  while (first < last && valueAt(first) === 0) first += 1;
  while (last > first && valueAt(last) === 0) last -= 1;
  return { first, taps: Float64Array.from({ length: last - first + 1 }, (_, i) => valueAt(first + i)) };
}

// The filters with their positions, as the transform applies them: an output of the analysis is the sum of
// tap q times sample 2k + q, and a coefficient k adds tap q to sample 2k + q of the synthesis.
function analysisFilters(undula, wavelet) {
  const responses = [0, 1].map((odd) => undula.call('dwt', [unit(SAMPLES, MIDDLE + odd), 1, wavelet]).re);
  const channel = (start) => trimmed((q) => {
    const odd = Math.abs(q % 2);
    const k = ((MIDDLE + odd - q) / 2 + SAMPLES) % MIDDLE;
    return responses[odd][start + k];
  });
  return { low: channel(0), high: channel(MIDDLE) };
}

function synthesisFilters(undula, wavelet) {
  const channel = (start) => {
    const response = undula.call('idwt', [unit(SAMPLES, start + MIDDLE / 2), 1, wavelet]).re;
    return trimmed((q) => response[MIDDLE + q]);
  };
  return { low: channel(0), high: channel(MIDDLE) };
}

const filterOf = (undula, { function: name, arguments: orders }) => undula.call(name, orders);

function filters(undula, { wavelet }) {
  const filter = filterOf(undula, wavelet);
  return { analysis: analysisFilters(undula, filter), synthesis: synthesisFilters(undula, filter) };
}

export const jobs = { filters };
