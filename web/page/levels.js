// How fine the curves of the panel "A wavelet" are that the inverse transform draws: 2^LEVELS points to a unit,
// and next to the ends of the data 2^LEVELS_AT_ENDS.

export const LEVELS = 10;
export const LEVELS_AT_ENDS = 7;
