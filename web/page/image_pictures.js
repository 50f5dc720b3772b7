// The pictures of the panel "An image", for charts.picture.

import { escaped } from './export.js';

const LABEL = '12px system-ui, sans-serif';
const LABEL_HEIGHT = 20;
const LETTER_WIDTH = 8;

// Where an image lies in a picture, as large as there is room.
export function placeIn(image, width, height) {
  const scale = Math.min(width / image.width, height / image.height);
  const [across, down] = [image.width * scale, image.height * scale];
  return { left: (width - across) / 2, top: (height - down) / 2, width: across, height: down, scale };
}

function drawFitted(context, image, width, height) {
  const place = placeIn(image, width, height);
  context.imageSmoothingEnabled = place.scale < 1;  // enlarged pixels are shown as what they are
  context.imageSmoothingQuality = 'high';
  context.drawImage(image, place.left, place.top, place.width, place.height);
  return place;
}

export function canvasOf(data, width, height) {
  const canvas = document.createElement('canvas');
  Object.assign(canvas, { width, height });
  canvas.getContext('2d').putImageData(new ImageData(data, width, height), 0, 0);
  return canvas;
}

export function greyData(pixels) {
  const data = new Uint8ClampedArray(4 * pixels.length);
  for (let i = 0, at = 0; i < pixels.length; i += 1, at += 4) {
    data[at] = pixels[i];
    data[at + 1] = pixels[i];
    data[at + 2] = pixels[i];
    data[at + 3] = 255;
  }
  return data;
}

// A picture of pixels, saved with as many as there are.
export function photograph({ title, file, description, canvas }) {
  return {
    title, file, description,
    aspect: canvas.width / canvas.height,
    draw: (context, width, height) => drawFitted(context, canvas, width, height),
    natural: () => canvas,
  };
}

// ---- Colours, 256 of each kind -----------------------------------------------------------------------------

const channels = (hex) => [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16));

const between = (from, to, t) => from.map((value, i) => Math.round(value + t * (to[i] - value)));

const scaleOf = (colour) => Array.from({ length: 256 }, (_, i) => colour(i));

const greys = scaleOf((i) => [i, i, i]);

// From one colour through the background at 128 to the other.
function signedScale({ background, series }) {
  const [middle, below, above] = [background, series[0], series[1]].map(channels);
  return scaleOf((i) => between(middle, i < 128 ? below : above, Math.min(Math.abs(i - 128) / 127, 1)));
}

const shadeScale = (theme) => scaleOf((i) => theme.shade(i / 255));

function colourBlock(data, { picture, cols }, { top, left, height, width }, scale) {
  for (let row = top; row < top + height; row += 1) {
    for (let i = row * cols + left; i < row * cols + left + width; i += 1) {
      const [red, green, blue] = scale[picture[i]];
      data[4 * i] = red;
      data[4 * i + 1] = green;
      data[4 * i + 2] = blue;
      data[4 * i + 3] = 255;
    }
  }
}

// Made once for each theme.
function colouredCanvas(coefficients, scalesOf) {
  const made = new Map();
  return (theme) => {
    if (!made.has(theme.dark)) {
      const scales = scalesOf(theme);
      const data = new Uint8ClampedArray(4 * coefficients.picture.length);
      coefficients.blocks.forEach((block, i) => colourBlock(data, coefficients, block, scales(i)));
      made.set(theme.dark, canvasOf(data, coefficients.cols, coefficients.rows));
    }
    return made.get(theme.dark);
  };
}

// ---- Blocks of coefficients --------------------------------------------------------------------------------

const onPage = (place, { top, left, height, width }) => ({
  x: place.left + left * place.scale, y: place.top + top * place.scale,
  width: width * place.scale, height: height * place.scale,
});

const isLabelled = ({ width, height }, name) =>
  Boolean(name) && height >= LABEL_HEIGHT && width >= LETTER_WIDTH * name.length;

function drawLabel(context, text, { x, y }, theme) {
  context.font = LABEL;
  context.globalAlpha = 0.8;
  context.fillStyle = theme.background;
  context.fillRect(x + 1, y + 1, context.measureText(text).width + 6, 17);
  context.globalAlpha = 1;
  context.fillStyle = theme.foreground;
  context.fillText(text, x + 4, y + 14);
}

function labelSvg(text, { x, y }, theme) {
  return `<rect x="${x + 1}" y="${y + 1}" width="${7 * text.length + 6}" height="17" fill="${theme.background}" ` +
    `fill-opacity="0.8"/><text x="${x + 4}" y="${y + 14}" font-family="system-ui, sans-serif" font-size="12" ` +
    `fill="${theme.foreground}">${escaped(text)}</text>`;
}

function imageSvg(canvas, { left, top, width, height }) {
  return `<image href="${canvas.toDataURL()}" x="${left}" y="${top}" width="${width}" height="${height}" ` +
    'preserveAspectRatio="none" style="image-rendering: pixelated"/>';
}

const short = (value) => Number(value.toFixed(2));

// Coefficients with lines around their blocks and, where there is room, the names of these.
function blocksPicture({ title, file, description, tell, coefficients, canvas, line }) {
  const { rows, cols, blocks } = coefficients;
  const size = { width: cols, height: rows };
  return {
    title, file, description,
    aspect: cols / rows,
    draw(context, width, height, theme) {
      const place = drawFitted(context, canvas(theme), width, height);
      const rectangles = blocks.map((block) => onPage(place, block));
      context.strokeStyle = line(theme);
      context.lineWidth = 1;
      for (const { x, y, width: across, height: down } of rectangles) context.strokeRect(x, y, across, down);
      rectangles.forEach((rectangle, i) =>
        isLabelled(rectangle, blocks[i].name) && drawLabel(context, blocks[i].name, rectangle, theme));
    },
    svg(width, height, theme) {
      const place = placeIn(size, width, height);
      const rectangles = blocks.map((block) => onPage(place, block));
      const lines = rectangles.map(({ x, y, width: across, height: down }) =>
        `M${short(x)} ${short(y)}h${short(across)}v${short(down)}h${-short(across)}z`);
      const labels = rectangles.map((rectangle, i) =>
        (isLabelled(rectangle, blocks[i].name) ? labelSvg(blocks[i].name, rectangle, theme) : ''));
      return imageSvg(canvas(theme), place) +
        `<path d="${lines.join('')}" fill="none" stroke="${line(theme)}"/>${labels.join('')}`;
    },
    tell(x, y, width, height) {
      const place = placeIn(size, width, height);
      const [col, row] = [(x * width - place.left) / place.scale, (y * height - place.top) / place.scale];
      const block = blocks.find(({ top, left, height: down, width: across }) =>
        row >= top && row < top + down && col >= left && col < left + across);
      return block ? tell(block) : '';
    },
  };
}

export function mosaic({ title, file, description, tell, coefficients }) {
  const scales = (theme) => {
    const signed = signedScale(theme);
    return (i) => (i === 0 ? greys : signed);
  };
  return blocksPicture({
    title, file, description, tell, coefficients, canvas: colouredCanvas(coefficients, scales),
    line: (theme) => theme.muted,
  });
}

export function partition({ title, file, description, tell, coefficients }) {
  const scales = (theme) => {
    const shades = shadeScale(theme);
    return () => shades;
  };
  return blocksPicture({
    title, file, description, tell, coefficients, canvas: colouredCanvas(coefficients, scales),
    line: (theme) => theme.series[1],
  });
}
