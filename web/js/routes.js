// What routes join, and how records come to a slot.

/** The paths of the nodes that pass on what they get, from the graph of the host. */
export function relaysIn(graph) {
  const relays = new Set();
  const walk = (path, space) => {
    if (space.passesOn) relays.add(path);
    for (const child of space.namespaces) walk(path ? `${path}/${child.label}` : child.label, child);
  };
  walk("", graph.root);
  return relays;
}

/** The node that a slot belongs to, of those that are known by their paths; empty for none. */
export function nodeOf(label, nodes) {
  for (let end = label.lastIndexOf("/"); end > 0; end = label.lastIndexOf("/", end - 1))
    if (nodes.has(label.slice(0, end))) return label.slice(0, end);
  return "";
}

/**
 * The questions {from, to, isBroken} that explain a slot, from pairs {from, to, reason}, with a reason where they are not connected. For an in-slot
 * they are the ways on which records come to it, through nodes that pass them on, each from where it begins, or where it is
 * broken; for an out-slot the pairs that it begins.
 */
export function questionsFor(label, pairs, relays) {
  const found = [];
  const seen = new Set();
  const walkUp = (to) => {
    if (seen.has(to)) return;
    seen.add(to);
    for (const pair of pairs.filter((one) => one.to === to)) {
      const relay = nodeOf(pair.from, relays);
      const before = pairs.filter((one) => relay && nodeOf(one.to, relays) === relay);
      if (pair.reason) found.push({ from: pair.from, to, isBroken: true });
      else if (before.length === 0) found.push({ from: pair.from, to: label });
      else new Set(before.map((one) => one.to)).forEach(walkUp);
    }
  };
  walkUp(label);
  return found.length > 0 ? found : pairs.filter(({ from }) => from === label).map(({ from, to, reason }) => ({ from, to, isBroken: reason !== "" }));
}
