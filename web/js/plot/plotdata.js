// The points of what is plotted. They are gathered whichever view is shown.

import { numbersOf } from "./components.js";
import { Ring } from "./ring.js";

export class PlotData {
  #rings = new Map(); // by the label that is plotted
  #plots = new Map(); // those labels, by the row that feeds them
  #numbers = [];

  constructor(model) {
    this.model = model;
    model.onPlotted = (row) => this.#take(row);
    model.onGap = (row) => {
      const labels = row ? this.#plots.get(row) ?? [] : [...this.#rings.keys()];
      for (const label of labels) this.#rings.get(label)?.breakLine();
    };
  }

  /** These labels are plotted from now on; of others, the points are forgotten. */
  setLabels(labels) {
    for (const label of this.#rings.keys()) if (!labels.includes(label)) this.#rings.delete(label);
    this.#plots.clear();
    for (const row of this.model.rows) row.isPlotted = false;
    for (const label of labels) {
      const row = this.model.byLabel.get(label);
      for (const source of row?.isOut ? [row] : row?.sources ?? []) {
        source.isPlotted = true;
        this.#plots.set(source, [...(this.#plots.get(source) ?? []), label]);
      }
    }
  }

  /** Undefined before the first point. */
  ringOf(label) {
    return this.#rings.get(label);
  }

  #take(row) {
    const numbers = numbersOf(row.value, this.#numbers);
    if (numbers.length === 0) return;
    for (const label of this.#plots.get(row) ?? []) {
      const known = this.#rings.get(label);
      const ring = known?.components >= numbers.length ? known : new Ring(numbers.length);
      if (ring !== known) this.#rings.set(label, ring);
      ring.add(row.moved, numbers);
    }
  }
}
