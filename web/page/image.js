// The panel "An image": its subbands, what few coefficients make of it, and its best basis.

import { codeBlock } from './code.js';
import { isCancelled } from './compute.js';
import { codeOf } from './image_code.js';
import { IMAGE_COSTS, hasThreshold } from './image_costs.js';
import { pgmName, pgmOf } from './image_file.js';
import { deepestLevel } from './image_layout.js';
import { canvasOf, greyData, mosaic, partition, photograph } from './image_pictures.js';
import {
  basisText, blockTold, compareHead, compareRows, compressionText, imageText, mosaicText, packetTold, qualityText,
  subbandHead, subbandRows,
} from './image_texts.js';
import { staleDuring } from './image_stale.js';
import { waveletChoice } from './wavelet_choice.js';

const FIRST = { levels: 4, share: 5, cost: 'shannon', threshold: 20, searched: '', file: '' };

const SAMPLE = 'examples/data/camera.pgm';

const KINDS = 'image/png,image/jpeg,image/webp,image/gif,image/bmp,image/avif,.pgm';

const LEAST_SHARE = 0.1;  // per cent
const STEPS = 20;         // of the slider for each factor of ten

const stepOf = (share) => Math.round(STEPS * Math.log10(share / LEAST_SHARE));
const shareAt = (step) => Number((LEAST_SHARE * 10 ** (step / STEPS)).toPrecision(2));

const keyOf = ({ image, wavelet, boundary, levels }) => [image.id, wavelet.name, boundary, levels].join(' ');

const within = (value, least, most, otherwise) =>
  (Number.isFinite(value) ? Math.min(Math.max(value, least), most) : otherwise);

const SUBBAND_HINT = 'H is high-pass along the columns and shows horizontal structures, V is high-pass along the ' +
  'rows, D along both; the number is the level. The smooth part is grey. Details have the colour of the page at 0, ' +
  'and one scale for each level, whose ends about 2 % of them exceed.';

const BASIS_HINT = 'Packets split the details too. The best basis is that in which the sum of a cost over all ' +
  'coefficients is least. Its packets divide the plane of frequencies, low ones at the top left; below the lines are ' +
  'the coefficients of each packet, logarithmic.';

// The parts of the panel on the page, and what happens when a control moves.
function build(root, { charts, controls, announce }, on) {
  const { make, section, group, button } = controls;
  const parts = {
    drop: controls.fileDrop({ label: 'Choose an image', accept: KINDS, target: root, onFile: on.file }),
    sample: button({ text: 'Sample', label: 'Show the sample image', onClick: on.sample }),
    save: button({ text: 'Image as PGM', onClick: on.save }),
    info: make('p', { class: 'info' }, 'Loading the sample.'),
    error: controls.errorLine(),
    choice: waveletChoice({ announce, onChange: on.choice }),
    levels: controls.number({ label: 'Levels', min: 1, max: 6, value: FIRST.levels, onChange: on.levels }),
    share: controls.slider({
      label: 'Coefficients kept', min: 0, max: 3 * STEPS, value: stepOf(FIRST.share),
      format: (step) => `${shareAt(step)} %`, onInput: on.share, onChange: on.shareRests,
    }),
    kept: make('p', { class: 'kept' }),
    subbands: controls.table({ caption: 'Subbands', head: subbandHead, rows: [] }),
    cost: controls.select({ label: 'Cost', options: IMAGE_COSTS, value: FIRST.cost, onChange: on.cost }),
    threshold: controls.number({
      label: 'Threshold', min: 0, max: 100000, value: FIRST.threshold, onChange: on.threshold,
    }),
    search: button({ text: 'Search the best basis', onClick: on.search }),
    basisInfo: make('p', { class: 'kept' }, 'Not searched yet.'),
    comparison: controls.table({ caption: 'Peak signal-to-noise ratio in dB', head: compareHead, rows: [] }),
    code: codeBlock(announce),
    codeHint: make('p', { class: 'hint' }),
  };
  parts.save.element.hidden = true;
  const [images, bands, packets] = Array.from({ length: 3 }, () => make('div', { class: 'charts' }));
  parts.comparison.element.hidden = true;
  parts.best = make('div', { hidden: true }, packets, parts.comparison.element);
  parts.results = [parts.kept, images, bands];
  root.append(
    group('Image', parts.drop.element, parts.sample.element, parts.save.element), parts.info, parts.error.element,
    parts.choice.element, group('Transform', parts.levels.element, parts.share.element), parts.kept, images,
    section('Subbands', make('p', { class: 'hint' }, SUBBAND_HINT), bands),
    section('Best basis of wavelet packets', make('p', { class: 'hint' }, BASIS_HINT),
      group('Search', parts.cost.element, parts.threshold.element, parts.search.element), parts.basisInfo, parts.best),
    section('The same in Python, C++ and Octave', parts.codeHint, parts.code.element),
  );
  const picture = (place, title) =>
    charts.picture(place, { title, description: 'Not computed yet.', aspect: 1, draw() {} });
  const withLines = (place, title) =>
    charts.picture(place, { title, description: 'Not computed yet.', aspect: 1, draw() {}, svg: () => '' });
  parts.charts = {
    original: picture(images, 'Image'),
    rebuilt: picture(images, 'From the wavelet basis'),
    mosaic: withLines(bands, 'Subbands'),
    partition: withLines(packets, 'Best basis'),
    bestRebuilt: picture(packets, 'From the best basis'),
  };
  bands.append(parts.subbands.element);
  return parts;
}

function mount(root, services) {
  const { compute, state, controls, announce } = services;
  let image = null;     // what readImage returned, with an id and the file that the lines read
  let lastId = 0;       // of images and of bases
  let loads = 0;
  let version = 0;      // of the setting: results of older ones are dropped
  let shown = -1;       // the version whose subbands are shown
  let shownKey = '';
  let searching = false;
  let interrupted = false;  // by a new image
  let basis = null;     // the best one of this version
  let last = null;      // what was rebuilt last

  const view = build(root, services, {
    file: (file, count) => load(file, count),
    sample: () => load(null),
    save: () => controls.download(pgmOf(image), image.file),
    choice: (changes) => { state.set(changes); change(); },
    levels: (levels) => { state.set({ levels }); change(); },
    share: (step) => { state.set({ share: shareAt(step) }); run(rebuild); },
    shareRests: () => announce(view.kept.textContent),
    cost: (cost) => { state.set({ cost }); showThreshold(); costChanged(); },
    threshold: (threshold) => { state.set({ threshold }); costChanged(); },
    search: () => { state.set({ searched: 'yes' }); run(search); },
  });

  // ---- What is chosen

  const share = () => within(Number(state.get().share), LEAST_SHARE, 100, FIRST.share);
  const costOf = ({ cost, threshold }) => ({
    name: IMAGE_COSTS.some(({ value }) => value === cost) ? cost : FIRST.cost,
    threshold: within(Number(threshold), 0, Infinity, FIRST.threshold),
  });
  const cost = () => costOf(state.get());
  const deepest = () => deepestLevel(image, view.choice.wavelet(), view.choice.boundary());
  const levels = () => within(Math.round(Number(state.get().levels)), 1, deepest(), Math.min(FIRST.levels, deepest()));

  const setting = () => {
    const { id, width, height, pixels } = image;
    const { name, function: family, arguments: orders } = view.choice.wavelet();
    const wavelet = { name, function: family, arguments: orders };
    return { image: { id, width, height, pixels }, wavelet, boundary: view.choice.boundary(), levels: levels() };
  };

  function showThreshold() {
    view.threshold.element.hidden = !hasThreshold(cost().name);
  }

  function showControls() {
    view.choice.show(state.get());
    view.share.value = stepOf(share());
    view.cost.value = cost().name;
    view.threshold.value = cost().threshold;
    showThreshold();
  }

  // ---- Errors

  // What was shown stays.
  function fail(error) {
    if (isCancelled(error)) view.error.show('Cancelled. What is shown may be of an earlier choice.');
    else view.error.show(error.message);
    if (!basis && !searching) forgetBasis(error);
  }

  // Runs what is asynchronous and shows its error, unless a new image has ended it.
  function run(action) {
    const began = loads;
    view.error.clear();
    return action().catch((error) => {
      if (began === loads) fail(error);
    });
  }

  // ---- The image

  // A new image does not wait until the search in the old one has ended.
  function load(file, count = 1) {
    loads += 1;
    interrupted ||= searching;
    if (searching) compute.cancel();
    return run(() => replaceImage(file, count));
  }

  async function replaceImage(file, count) {
    const wanted = loads;
    let read = null;
    try {
      read = await staleDuring([view.info, ...view.results, view.best], () => compute.run('image.read', { file }));
    } catch (error) {
      if (wanted === loads) await keepImage(error);
    }
    if (!read || wanted !== loads) return;
    const notes = count > 1 ? [...read.notes, `Of the ${count} files the first is shown.`] : read.notes;
    image = { ...read, notes, id: lastId += 1, file: file ? pgmName(read.name) : SAMPLE };
    state.set({ file: file ? read.name : '' });
    showImage();
    announce(view.info.textContent);
    await refresh();
  }

  // What a faulty file has interrupted is computed after all.
  async function keepImage(error) {
    if (!interrupted || isCancelled(error)) throw error;
    view.error.show(error.message);
    await refresh();
  }

  // A file that was dropped is not in the address.
  async function loadFirst() {
    const { file } = state.get();
    await load(null);
    if (file && image) view.info.prepend(`${file} was shown here, which only you have. This is the sample instead. `);
  }

  function showImage() {
    view.info.textContent = imageText(image);
    view.save.element.hidden = image.file === SAMPLE;
    view.charts.original.update(photograph({
      title: 'Image', file: 'image', description: imageText(image),
      canvas: canvasOf(greyData(image.pixels), image.width, image.height),
    }));
  }

  // ---- The transform

  // The setting is another one.
  function change() {
    if (image) run(refresh);
  }

  async function refresh() {
    version += 1;
    basis = null;
    interrupted = false;
    const most = deepest();
    view.levels.setRange({ min: 1, max: Math.max(most, 1) });
    if (most === 0) {
      view.error.show('The image is too small for the filters of this wavelet at its ends. Please choose periodic ' +
        'ends, or a shorter wavelet. What is shown below is of the earlier choice.');
      return;
    }
    tellSearch();
    view.levels.value = levels();
    const isDrawn = await staleDuring([...view.results, view.best], drawWavelet);
    if (isDrawn && state.get().searched) await search();
  }

  // The pictures of the best basis stay until there are others.
  function tellSearch() {
    const { searched } = state.get();
    if (!searched) view.best.hidden = true;
    view.basisInfo.textContent = !searched ? 'Not searched yet.'
      : `Searching.${view.best.hidden ? '' : ' What is shown below is of an earlier choice.'}`;
  }

  // Whether they are those of the setting now.
  async function drawSubbands() {
    const [wanted, wantedSetting] = [version, setting()];
    const result = await compute.latest('image.transform', 'image.transform', { setting: wantedSetting });
    if (!result || wanted !== version) return false;
    view.charts.mosaic.update(mosaic({
      title: 'Subbands', file: 'subbands', description: mosaicText(result), tell: blockTold, coefficients: result,
    }));
    view.subbands.update(subbandRows(result.blocks));
    [shown, shownKey] = [version, keyOf(wantedSetting)];
    return true;
  }

  async function drawWavelet() {
    const isNew = await drawSubbands();
    if (isNew) await rebuild();
    return isNew;
  }

  async function rebuild() {
    if (!image) return;
    if (shown !== version) {
      await refresh();
      return;
    }
    const [wanted, from] = [version, setting()];
    const request = { setting: from, basis, share: share() };
    const result = await compute.latest('image.rebuild', 'image.rebuild', request);
    if (!result || wanted !== version) return;
    last = { ...result, setting: from, image };
    drawRebuilt(view.charts.rebuilt, 'wavelet basis', result.wavelet);
    if (result.best) drawRebuilt(view.charts.bestRebuilt, 'best basis', result.best);
    tellResult();
  }

  function tellResult() {
    if (!last) return;
    const { wavelet, best } = last;
    view.kept.textContent = compressionText(last.image, { wavelet, best: basis && best }) + levelsNote(deepest());
    showCode();
  }

  const levelsNote = (most) => {
    const admitted = most === 1 ? '1 level' : `${most} levels`;
    return Number(state.get().levels) > most ? ` The image takes ${admitted} at most.` : '';
  };

  function drawRebuilt(chart, name, result) {
    chart.update(photograph({
      title: `From the ${name}: ${qualityText(result)}`, file: `from-the-${name.replace(' ', '-')}`,
      description: compressionText(image, { wavelet: result, best: null }),
      canvas: canvasOf(result.data, image.width, image.height),
    }));
  }

  // ---- The best basis

  function costChanged() {
    if (state.get().searched) run(search);
  }

  async function search() {
    if (!image || searching) return;
    const began = loads;
    let found = null;
    searching = true;
    try {
      while (!isNewest(found)) {
        found = await staleDuring([view.best], searchOnce);
        if (isNewest(found)) await staleDuring([view.comparison.element], showComparison);
      }
    } catch (error) {
      if (began !== loads) return;
      if (!isNewest(found)) {
        forgetBasis(error);
        throw error;
      }
      leaveOutComparison(error);
    } finally {
      searching = false;
    }
  }

  const isNewest = (sought) =>
    sought?.version === version && sought.cost.name === cost().name && sought.cost.threshold === cost().threshold;

  // Returns for what it was searched. While it runs, other choices may be made.
  async function searchOnce() {
    tellSearch();
    const sought = { version, cost: cost() };
    const request = { setting: setting(), cost: sought.cost, basisId: lastId += 1 };
    const result = await compute.run('image.search', request);
    if (isNewest(sought)) await showBasis(result);
    return sought;
  }

  async function showBasis(result) {
    basis = result.basis;
    view.best.hidden = false;
    view.basisInfo.textContent = basisText(result);
    view.charts.partition.update(partition({
      title: `Best basis: ${basis.packets.length} packets`, file: 'best-basis', description: basisText(result),
      tell: packetTold, coefficients: result,
    }));
    announce(view.basisInfo.textContent);
    await rebuild();
  }

  async function showComparison() {
    const wanted = version;
    const rows = await compute.run('image.compare', { setting: setting(), basis });
    if (wanted !== version) return;
    view.comparison.update(compareRows(rows));
    view.comparison.element.hidden = false;
  }

  // The basis stands without it.
  function leaveOutComparison(error) {
    view.comparison.element.hidden = true;
    view.error.show(isCancelled(error) ? 'The comparison of the bases was cancelled.' : error.message);
    keepFocus();
  }

  function forgetBasis(error) {
    if (!state.get().searched) return;
    basis = null;
    state.set({ searched: '' });
    view.best.hidden = true;
    view.basisInfo.textContent = isCancelled(error) ? 'The search was cancelled.' : 'No basis was found.';
    tellResult();
    keepFocus();
  }

  // The button that cancels has gone.
  function keepFocus() {
    const focused = document.activeElement;
    if (focused === document.body || focused.closest('[hidden]')) view.search.element.focus();
  }

  // ---- The lines

  function showCode() {
    const { width, height, file } = last.image;
    const { size: [rows, cols], wanted } = last.wavelet;
    view.codeHint.textContent = file === SAMPLE ? `The lines read the sample, ${file}.`
      : `“Image as PGM” above saves the file ${file}.`;
    view.code.update(codeOf({
      image: { file, width, height }, wavelet: last.setting.wavelet, boundary: last.setting.boundary,
      levels: last.setting.levels, rows, cols, wanted, cost: cost(), packets: Boolean(basis),
    }));
  }

  return {
    show() {
      showControls();
      if (!image) run(loadFirst);
      else if (keyOf(setting()) !== shownKey || Boolean(basis) !== Boolean(state.get().searched)) change();
      else run(rebuild);
    },
    hide() {},
  };
}

export const panel = { id: 'image', title: 'An image', defaults: FIRST, mount };
