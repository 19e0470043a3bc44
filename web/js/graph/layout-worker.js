// Lays the graph of the host out, beside the page, for a large one takes a while. Gets its text, answers {layout} or
// {problem}.

import { instance } from "/parts/viz.js";

const maxLabel = 60; // characters; a label without end would make the picture as wide
const roomForRate = "00000/s";

const viz = instance();

// The widths of sans-serif letters are not known there; those of Helvetica are.
function prepared(dot) {
  return dot.replaceAll('fontname="sans-serif"', 'fontname="Helvetica"').replace(/(\blabel=")((?:[^"\\]|\\.)*)"/g, (_, head, label) => {
    const characters = label.match(/\\.|./gsu) ?? [];
    return `${head}${characters.length > maxLabel ? `${characters.slice(0, maxLabel).join("")}…` : label}"`;
  });
}

onmessage = async ({ data: dot }) => {
  try {
    const made = (await viz).render(prepared(dot), { format: "json", edgeAttributes: { label: roomForRate } });
    if (made.status !== "success") throw new Error(made.errors.map(({ message }) => message).join("; "));
    postMessage({ layout: JSON.parse(made.output) });
  } catch (error) {
    postMessage({ problem: error.message });
  }
};
