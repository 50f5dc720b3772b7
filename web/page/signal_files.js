// Samples as a file, one a line.

const AT_ONCE = 2 ** 16;

const breath = () => new Promise((resolve) => { setTimeout(resolve); });

export async function samplesFile(samples) {
  const parts = [];
  for (let i = 0; i < samples.length; i += AT_ONCE) {
    parts.push(`${samples.subarray(i, i + AT_ONCE).join('\n')}\n`);
    await breath();
  }
  return new Blob(parts, { type: 'text/csv' });
}
