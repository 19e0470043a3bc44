// Plots of the last two minutes.

import { make, setText } from "../dom.js";
import { Plot, plotLibrary } from "./plot.js";

const period = 66; // milliseconds between two pictures
const height = 200; // points of the screen

/** A plot with its title; it is for one row, and goes with it. */
class Box {
  constructor(uPlot, row, label, remove) {
    this.row = row;
    this.plot = new Plot(uPlot, row?.type ?? "", height);
    this.note = make("p", { class: "hint" }, "No number has come yet.");
    const title = row?.title ?? label;
    const button = make("button", { title: "do not plot it", "aria-label": `do not plot ${label}`, onclick: remove }, "✕");
    this.element = make("section", { class: "plot-box" },
      make("h2", {}, title, make("small", {}, title === label ? "" : label), button), this.plot.element, this.note);
  }

  draw(ring, now) {
    this.note.hidden = ring !== undefined;
    this.plot.draw(ring, now);
  }

  remove() {
    this.plot.destroy();
    this.element.remove();
  }
}

export class Plots {
  #boxes = new Map(); // by label
  #uPlot = null;
  #lastDraw = 0;
  pace = period;

  constructor(model, address, data) {
    this.model = model;
    this.address = address;
    this.data = data;
    this.note = make("p", { class: "hint" });
    this.element = make("div", { class: "plots" }, this.note);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.#boxes.forEach(({ plot }) => plot.destroy()));
  }

  async show() {
    try {
      this.#uPlot = await plotLibrary();
      this.update();
    } catch (error) {
      setText(this.note, error.message);
    }
  }

  update() {
    if (!this.#uPlot) return;
    const { plots } = this.address.state;
    for (const [label, box] of this.#boxes)
      if (!plots.includes(label) || box.row !== this.model.byLabel.get(label)) this.#remove(label, box);
    for (const label of plots) if (!this.#boxes.has(label)) this.#add(label);
    this.note.hidden = plots.length > 0;
    setText(this.note, "Nothing is plotted. Choose a line of the table and press p, or press ∿ at its end.");
  }

  #add(label) {
    const box = new Box(this.#uPlot, this.model.byLabel.get(label), label, () => this.address.togglePlot(label));
    this.#boxes.set(label, box);
    this.element.append(box.element);
  }

  #remove(label, box) {
    box.remove();
    this.#boxes.delete(label);
  }

  draw(time) {
    if (time - this.#lastDraw < period) return;
    this.#lastDraw = time;
    const now = this.model.clock.now();
    for (const [label, box] of this.#boxes) box.draw(this.data.ringOf(label), now);
  }
}
