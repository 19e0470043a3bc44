// Plots of the last two minutes.

import { componentNames } from "./components.js";
import { colour, make, setText } from "./dom.js";
import { whyMissing } from "./parts.js";

const period = 66; // milliseconds between two pictures
const height = 200; // points of the screen
const strokes = ["--plot-1", "--plot-2", "--plot-3", "--plot-4"];

/** The plot of one slot; it is drawn anew, for others have other components and colours. */
class Plot {
  #plot = null;
  #ring = null;
  #lists = [];

  constructor(uPlot, row, label, remove) {
    this.uPlot = uPlot;
    this.row = row;
    this.place = make("div");
    this.note = make("p", { class: "hint" }, "No number has come yet.");
    this.element = make("section", { class: "plot-box", "data-label": label },
      make("h2", {}, row?.title ?? label, " ", make("small", {}, row && row.title !== label ? label : ""),
        make("button", { title: "do not plot it", "aria-label": `do not plot ${label}`, onclick: remove }, "✕")),
      this.place, this.note);
  }

  draw(ring, now) {
    this.note.hidden = ring !== undefined;
    if (!ring || this.place.clientWidth === 0) return;
    if (ring !== this.#ring) this.#make(ring);
    this.#ring = ring;
    if (this.#plot.width !== this.place.clientWidth) this.#plot.setSize({ width: this.place.clientWidth, height });
    this.#plot.batch(() => {
      this.#plot.setData(ring.readInto(this.#lists, now), false);
      this.#plot.setScale("x", { min: now - ring.span, max: now });
    });
    this.element.dataset.points = ring.size;
  }

  #make(ring) {
    this.#plot?.destroy();
    const axis = { stroke: colour("--text"), grid: { stroke: colour("--line"), width: 1 }, ticks: { stroke: colour("--line") } };
    const names = componentNames(this.row?.type ?? "", ring.components);
    this.#lists = [];
    this.#plot = new this.uPlot({
      width: this.place.clientWidth,
      height,
      pxAlign: false,
      scales: { x: { auto: false } },
      series: [{ label: "time" }, ...names.map((name, i) => ({ label: name, stroke: colour(strokes[i % strokes.length]), width: 1.5, spanGaps: false }))],
      axes: [axis, { ...axis, size: 64 }],
    }, ring.readInto(this.#lists, -Infinity), this.place);
  }

  destroy() {
    this.#plot?.destroy();
  }
}

export class Plots {
  #plots = new Map(); // by label
  #uPlot = null;
  #lastDraw = 0;

  constructor(model, address, data) {
    this.model = model;
    this.address = address;
    this.data = data;
    this.note = make("p", { class: "hint" });
    this.element = make("div", { class: "plots" }, this.note);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.#clear());
  }

  async show() {
    if (this.#uPlot) return;
    try {
      document.head.append(make("link", { rel: "stylesheet", href: "/parts/uplot.css" }));
      this.#uPlot = (await import("/parts/uplot.js")).default;
      this.update();
    } catch (error) {
      this.note.hidden = false;
      setText(this.note, (await whyMissing("/parts/uplot.js")) ?? error.message);
    }
  }

  update() {
    if (!this.#uPlot) return;
    const { plots } = this.address.state;
    for (const [label, plot] of this.#plots)
      if (!plots.includes(label) || plot.row !== this.model.byLabel.get(label)) this.#remove(label, plot);
    for (const label of plots) if (!this.#plots.has(label)) this.#add(label);
    this.note.hidden = plots.length > 0;
    setText(this.note, "Nothing is plotted. Choose a line of the table and press p, or press ∿ at its end.");
  }

  #add(label) {
    const plot = new Plot(this.#uPlot, this.model.byLabel.get(label), label, () => this.address.togglePlot(label));
    this.#plots.set(label, plot);
    this.element.append(plot.element);
  }

  #remove(label, plot) {
    plot.destroy();
    plot.element.remove();
    this.#plots.delete(label);
  }

  // So that they are made anew, in other colours.
  #clear() {
    for (const [label, plot] of this.#plots) this.#remove(label, plot);
    this.update();
  }

  draw(time) {
    if (time - this.#lastDraw < period) return;
    this.#lastDraw = time;
    const now = this.model.clock.now();
    for (const [label, plot] of this.#plots) plot.draw(this.data.ringOf(label), now);
  }
}
