// The table of sensors and slots. However many there are, only those that can be seen are in the page.

import { make, setText } from "./dom.js";
import { isFound } from "./row.js";
import { statistics } from "./stream.js";
import { ageText, rateText, valueText } from "./text.js";

const period = 100; // milliseconds: nobody reads faster

const columns = ["", "name", "type", "value", "records", "age", "plot"];

/** One line of the picture, for whichever row is there at the moment. */
class Line {
  constructor(choose, plot) {
    const cell = (name) => make("span", { class: `cell ${name}`, role: "gridcell" });
    this.mark = cell("mark");
    this.title = make("b");
    this.label = make("small");
    this.name = cell("name");
    this.name.append(this.title, this.label);
    [this.type, this.value, this.rate, this.age] = ["type", "value", "rate", "age"].map(cell);
    this.button = make("button", { class: "cell plot", tabindex: "-1", title: "plot it (p)", onclick: (event) => (event.stopPropagation(), plot(this.row)) }, "∿");
    this.element = make("div", { class: "line", role: "row", onclick: () => choose(this.row) },
      this.mark, this.name, this.type, this.value, this.rate, this.age, this.button);
  }

  show(row, index, { chosen, plots }, now) {
    this.row = row;
    this.element.hidden = !row;
    if (!row) return;
    const kind = kindOf(row, now);
    setText(this.mark, { flows: "●", still: "○", broken: "✕" }[kind]);
    setText(this.title, row.title);
    setText(this.label, row.title === row.label ? "" : row.label);
    setText(this.type, row.isOut ? `${row.type} →` : row.type);
    setText(this.value, shownValue(row));
    if (row.lastMoved !== undefined) statistics.firstValue ??= performance.now();
    setText(this.rate, rateText(row.shownRate));
    setText(this.age, row.lastMoved === undefined ? "never" : ageText(now - row.lastMoved));
    this.element.dataset.kind = kind;
    this.element.dataset.label = row.label;
    this.element.setAttribute("aria-rowindex", index + 2);
    this.element.setAttribute("aria-selected", row.label === chosen);
    this.button.setAttribute("aria-pressed", plots.includes(row.label));
  }
}

/** "broken" where nothing can come, "still" where nothing came for a while. */
function kindOf(row, now) {
  if (row.refusal || !(row.isOut || row.slot.active)) return "broken";
  return row.isStill(now) ? "still" : "flows";
}

function shownValue(row) {
  if (row.refusal) return row.refusal;
  const value = row.shownValue;
  return value === undefined && row.isSequence ? "choose it to see it" : valueText(value);
}

export class Table {
  #lines = [];
  #found = [];
  #lastDraw = 0;
  #hadRecords = false; // at the last one

  constructor(model, address) {
    this.model = model;
    this.address = address;
    const heads = columns.map((name) => make("span", { class: `cell ${name || "mark"}`, role: "columnheader" }, name));
    this.space = make("div", { class: "lines", role: "rowgroup" });
    this.none = make("p", { class: "hint", hidden: true });
    this.element = make("div", { class: "table", role: "grid", tabindex: "0", "aria-label": "Sensors and slots", onkeydown: (event) => this.#move(event) },
      make("div", { class: "line head", role: "row" }, ...heads), this.space, this.none);
  }

  /** The rows, the search or what is chosen are others. */
  update() {
    const { search } = this.address.state;
    this.#found = this.model.rows.filter((row) => isFound(row, search));
    this.rowHeight = parseFloat(getComputedStyle(this.element).getPropertyValue("--row-height"));
    this.space.style.height = `${this.#found.length * this.rowHeight}px`;
    this.element.setAttribute("aria-rowcount", this.#found.length + 1);
    this.none.hidden = this.#found.length > 0 || this.model.rows.length === 0;
    setText(this.none, `No slot or sensor is called like “${search}”.`);
    this.#lastDraw = 0;
  }

  draw(time) {
    const first = Math.max(0, Math.floor(this.element.scrollTop / this.rowHeight));
    const isAwaited = !this.#hadRecords && this.model.taken > 0;
    if (time - this.#lastDraw < period && first === this.#first && !isAwaited) return;
    this.#hadRecords ||= isAwaited;
    this.#lastDraw = time;
    this.#first = first;
    const count = Math.min(this.#found.length - first, Math.ceil(this.element.clientHeight / this.rowHeight) + 1);
    while (this.#lines.length < count) this.#addLine();
    const now = this.model.clock.heardUntil();
    this.#lines.forEach((line, i) => {
      line.show(i < count ? this.#found[first + i] : undefined, first + i, this.address.state, now);
      line.element.style.transform = `translateY(${(first + i) * this.rowHeight}px)`;
    });
  }
  #first = 0;

  #addLine() {
    const line = new Line((row) => this.address.change({ chosen: row.label }), (row) => this.address.togglePlot(row.label));
    this.#lines.push(line);
    this.space.append(line.element);
  }

  #move(event) {
    const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, Home: -Infinity, End: Infinity };
    const step = steps[event.key];
    if (step === undefined || this.#found.length === 0) return;
    event.preventDefault();
    const at = this.#found.findIndex(({ label }) => label === this.address.state.chosen);
    const next = Math.min(Math.max(at + step, 0), this.#found.length - 1);
    this.address.change({ chosen: this.#found[next].label }, true);
    this.#scrollTo(next);
  }

  #scrollTo(index) {
    const top = index * this.rowHeight;
    const visible = this.element.clientHeight - 2 * this.rowHeight; // the head stands there, too
    if (top < this.element.scrollTop) this.element.scrollTop = top;
    else if (top > this.element.scrollTop + visible) this.element.scrollTop = top - visible;
  }
}
