// What is of an earlier choice is dimmed while the present one is computed.

const running = new Map();  // element -> number of the actions under way, which may overlap

function count(elements, change) {
  for (const element of elements) {
    const now = (running.get(element) ?? 0) + change;
    running.set(element, now);
    element.classList.toggle('stale', now > 0);
    element.setAttribute('aria-busy', String(now > 0));
  }
}

// Returns what the action does.
export async function staleDuring(elements, action) {
  count(elements, 1);
  try {
    return await action();
  } finally {
    count(elements, -1);
  }
}
