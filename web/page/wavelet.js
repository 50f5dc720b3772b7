// The panel "A wavelet": its filters, its functions, and what they are good for.

import { waveletChoice } from './wavelet_choice.js';

export const panel = {
  id: 'wavelet',
  title: 'A wavelet',
  defaults: {},
  mount(root, { compute, state, charts, announce }) {
    const choice = waveletChoice({ onChange: (changes) => { state.set(changes); draw(); }, announce });
    root.append(choice.element);
    const record = (series) => ({ title: 'Taps', xLabel: 'position', yLabel: 'tap', series, description: '' });
    const chart = charts.line(root, record([]));
    async function draw() {
      const { analysis } = await compute.latest('filters', 'wavelet.filters', { wavelet: choice.wavelet() }) ?? {};
      if (!analysis) return;
      const series = Object.entries(analysis).map(([label, { first, taps }]) =>
        ({ label, x: Float64Array.from(taps, (_, i) => first + i), y: taps, kind: 'stems' }));
      chart.update(record(series));
    }
    return { show(now) { choice.show(now); draw(); }, hide() {} };
  },
};
