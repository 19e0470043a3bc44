// The plot of one slot.

import { componentNames } from "./components.js";
import { colour, make } from "../dom.js";
import { whyMissing } from "../parts.js";

const shortest = 10; // seconds
const strokes = ["--plot-1", "--plot-2", "--plot-3", "--plot-4"];
const timeText = (seconds) => new Date(1000 * seconds).toLocaleTimeString("en", { hour12: false });

let library = null;

/** What draws plots; throws an error with what to do where it is missing. */
export function plotLibrary() {
  library ??= import("/parts/uplot.js").then(({ default: uPlot }) => {
    document.head.append(make("link", { rel: "stylesheet", href: "/parts/uplot.css" }));
    return uPlot;
  });
  return library.catch(async (error) => {
    throw new Error((await whyMissing("/parts/uplot.js")) ?? error.message);
  });
}

/** Shows a ring in its element, once there is one. It is made anew where that has other components, or the colours are others. */
export class Plot {
  #plot = null;
  #ring = null;
  #lists = [];

  constructor(uPlot, type, height) {
    this.uPlot = uPlot;
    this.type = type;
    this.height = height; // points of the screen
    this.element = make("div");
  }

  draw(ring, now) {
    const width = this.element.clientWidth;
    if (!ring || width === 0) return;
    if (ring !== this.#ring) this.#make(ring);
    if (this.#plot.width !== width) this.#plot.setSize({ width, height: this.height });
    this.#plot.batch(() => {
      this.#plot.setData(ring.readInto(this.#lists, now), false);
      const first = Math.min(this.#lists[0][0] ?? now, now - shortest);
      this.#plot.setScale("x", { min: Math.max(first, now - ring.span), max: now });
    });
    this.element.dataset.points = ring.size;
  }

  #make(ring) {
    this.destroy();
    this.#ring = ring;
    this.#lists = [];
    const axis = { stroke: colour("--text"), grid: { stroke: colour("--line"), width: 1 }, ticks: { stroke: colour("--line") } };
    const lines = componentNames(this.type, ring.components).map((label, i) =>
      ({ label, stroke: colour(strokes[i % strokes.length]), width: 1.5, spanGaps: false }));
    this.#plot = new this.uPlot({
      width: this.element.clientWidth,
      height: this.height,
      pxAlign: false,
      scales: { x: { auto: false } },
      series: [{ label: "time", value: (_, time) => (time === null ? "–" : timeText(time)) }, ...lines],
      axes: [{ ...axis, size: 30, values: (_, times) => times.map(timeText) }, { ...axis, size: 64 }],
    }, ring.readInto(this.#lists, -Infinity), this.element);
  }

  /** What it shows from now on is made anew. */
  destroy() {
    this.#plot?.destroy();
    this.#plot = this.#ring = null;
  }
}
