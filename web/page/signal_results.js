// What a part of the panel "A signal" computes. It is pale while other settings are computed, and away where there is
// nothing for them.
//
//   const results = resultsIn(make, child...) -> { element, computing(), drawn(), gone() }

export function resultsIn(make, ...children) {
  const element = make('div', { hidden: true }, ...children);
  const set = (isStale, isGone) => {
    element.classList.toggle('stale', isStale);
    element.setAttribute('aria-busy', String(isStale));
    element.hidden = isGone;
  };
  return {
    element,
    computing: () => set(true, element.hidden),
    drawn: () => set(false, false),
    gone: () => set(false, true),
  };
}
