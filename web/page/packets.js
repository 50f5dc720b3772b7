// Where packets lie.

// The first coefficient of a packet among those of its level, and how many there are. The low-pass half comes first
// below an even position and last below an odd one; of an odd length it is the longer.
export function packetPlace(count, level, position) {
  let start = 0, length = count;
  for (let j = level - 1; j >= 0; j -= 1) {
    const parentIsOdd = Math.floor(position / 2 ** (j + 1)) % 2;
    const isSecond = Math.floor(position / 2 ** j) % 2;
    const first = parentIsOdd ? Math.floor(length / 2) : Math.ceil(length / 2);
    if (isSecond) start += first;
    length = isSecond ? length - first : first;
  }
  return { start, length };
}
