// The picture of a graph as boxes, frames and arrows in points, y downwards, from what the layout says in its own words.

const inch = 72; // points

/** Names and labels come as the text of the graph wrote them, with backslashes before some characters. */
const plain = (text) => text.replace(/\\(.)/gs, "$1");
const numbers = (text) => text.split(/[ ,]/).map(Number);

/**
 * {width, height, frames: [{name, label, x, y, width, height}], boxes: the same with id, isMissing and isSensor, arrows: [{tail,
 * head, path, tip, at, isBroken, isDotted, why}]}, where tail and head are ids of boxes, path is that of an SVG, tip the triangle at its end, and at a place
 * for a text.
 */
export function readLayout(layout) {
  const [left, bottom, right, top] = numbers(layout.bb);
  const place = (x, y) => [x - left, top - y];
  const objects = layout.objects ?? [];
  return {
    width: right - left,
    height: top - bottom,
    frames: objects.filter(({ bb }) => bb).map((frame) => readFrame(frame, place)),
    boxes: objects.filter(({ pos }) => pos).map((box) => readBox(box, place)),
    arrows: (layout.edges ?? []).filter(({ pos }) => pos).map((edge) => readArrow(edge, objects, place)),
  };
}

function readFrame({ name, label, bb }, place) {
  const [left, bottom, right, top] = numbers(bb);
  const [x, y] = place(left, top);
  return { name: plain(name).replace(/^cluster /, ""), label: plain(label ?? ""), x, y, width: right - left, height: top - bottom };
}

function readBox(box, place) {
  const [width, height] = [box.width * inch, box.height * inch];
  const [x, y] = place(...numbers(box.pos));
  return {
    id: box.name,
    name: plain(box.name).replace(/^missing /, ""),
    label: plain(box.label ?? ""),
    x: x - width / 2,
    y: y - height / 2,
    width,
    height,
    isMissing: box.style === "dashed",
    isSensor: box.style?.includes("filled") ?? false,
  };
}

function readArrow(edge, objects, place) {
  const words = edge.pos.split(" ").filter((word) => !word.startsWith("s,"));
  const end = words.find((word) => word.startsWith("e,"));
  const points = words.filter((word) => !word.startsWith("e,")).map((word) => place(...numbers(word)));
  return {
    tail: objects[edge.tail].name,
    head: objects[edge.head].name,
    path: `M${points[0]}C${points.slice(1).join(" ")}`,
    tip: end ? triangle(points.at(-1), place(...numbers(end.slice(2)))) : "",
    at: edge.lp ? place(...numbers(edge.lp)) : points[Math.floor(points.length / 2)],
    isBroken: edge.color === "red",
    isDotted: edge.style === "dotted",
    why: plain(edge.tooltip ?? ""),
  };
}

function triangle([x, y], [tipX, tipY]) {
  const [sideX, sideY] = [(y - tipY) * 0.35, (tipX - x) * 0.35];
  return `M${tipX},${tipY}L${x + sideX},${y + sideY}L${x - sideX},${y - sideY}Z`;
}
