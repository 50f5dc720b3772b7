// Squares of very large or very small numbers leave the range of double precision; those of scaled numbers do not.

// The power of two that brings the largest magnitude to about 1; of zeros it is 1.
export function scaleOf(numbers) {
  let largest = 0;
  for (let i = 0; i < numbers.length; i += 1) largest = Math.max(largest, Math.abs(numbers[i]));
  return largest > 0 ? 2 ** Math.min(1023, -Math.floor(Math.log2(largest))) : 1;
}
