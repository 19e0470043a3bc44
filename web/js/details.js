// All that is known of what is chosen.

import { everything } from "./address.js";
import { agesOf } from "./ages.js";
import { make, setText } from "./dom.js";
import { Plot, plotLibrary } from "./plot/plot.js";
import { nodeOf, questionsFor } from "./routes.js";
import { countName, ageText, rateText, valueText } from "./text.js";
import { explain, explainAll, explainLonely } from "./why.js";

const askPeriod = 3_000; // milliseconds
const drawPeriod = 200;
const plotHeight = 150; // points of the screen
const pause = 150; // for somebody who runs through the table
const notCounts = new Set(["label", "short", "direction", "type", "schema", "active", "lastStamp", "sensor"]);

const list = (entries) =>
  make("dl", {}, ...entries.flatMap(([name, value]) => [make("dt", {}, name), make("dd", {}, value)]));

export class Details {
  #label = "";
  #row = undefined;
  #plotted = null;
  #lastDraw = 0;
  #asked = 0; // the newest round of questions
  #timer = 0;

  constructor(model, address, data, element) {
    this.data = data;
    this.model = model;
    this.address = address;
    this.element = element;
    this.now = make("div");
    this.why = make("div", { "aria-live": "polite" });
    this.plot = make("div");
    this.ages = make("div");
    this.counts = make("div");
    this.node = make("div");
  }

  /** The choice, or what is known of it, is another one. */
  update() {
    const { chosen } = this.address.state;
    const row = this.model.byLabel.get(chosen);
    if (chosen === this.#label && row === this.#row) return;
    this.#label = chosen;
    this.#row = row;
    this.element.hidden = chosen === "";
    for (const part of [this.why, this.now, this.plot, this.ages, this.counts, this.node]) part.replaceChildren();
    this.element.replaceChildren(this.#head(chosen), this.why, this.now, this.plot, this.ages, this.counts, this.node);
    clearTimeout(this.#timer);
    this.#asked += 1;
    if (chosen !== "") this.#timer = setTimeout(() => this.#explain(), pause);
    this.#lastDraw = 0;
    this.#plotted?.destroy();
    this.#plotted = null;
    if (row) this.#prepare(row);
  }

  // Without what draws plots, the other details are there; the view of plots tells what to do.
  async #prepare(row) {
    const uPlot = await plotLibrary().catch(() => undefined);
    if (!uPlot || row !== this.#row || this.#plotted) return;
    this.#plotted = new Plot(uPlot, row.type, plotHeight);
    this.plot.append(this.#plotted.element);
  }

  #head(chosen) {
    const row = this.model.byLabel.get(chosen);
    const close = make("button", { class: "close", title: "close (Esc)", "aria-label": "close", onclick: () => this.address.change({ chosen: "" }) }, "✕");
    const title = chosen === everything ? "What does not flow" : row?.title ?? chosen;
    const plot = make("button", { onclick: () => this.address.togglePlot(chosen) }, "Plot (p)");
    return make("header", {}, close, make("h2", {}, title), ...(row ? [plot] : []));
  }

  async #explain() {
    const number = (this.#asked += 1);
    const label = this.#label;
    await this.model.readRelays().catch(() => {}); // gone, as below
    const { pairs, relays } = this.model;
    const questions = questionsFor(label, pairs, relays);
    const answers = await this.#answers(label, questions).catch((error) =>
      error instanceof TypeError ? [] : [make("p", { class: "hint" }, error.message)]); // gone; the page says so elsewhere
    if (number !== this.#asked || label !== this.#label) return;
    if (answers.length > 0) this.why.replaceChildren(...answers);
    const whole = questions.find(({ isBroken }) => !isBroken);
    if (this.ages.childElementCount === 0 && whole) this.ages.append(agesOf(whole));
    this.#timer = setTimeout(() => this.#explain(), askPeriod);
  }

  #answers(label, questions) {
    if (label === everything) return explainAll((one) => this.address.change({ chosen: one }));
    return questions.length > 0 ? explain(questions) : explainLonely(label);
  }

  draw(time) {
    if (this.#label === "" || this.#label === everything || time - this.#lastDraw < drawPeriod) return;
    this.#lastDraw = time;
    const row = this.model.byLabel.get(this.#label);
    if (row) this.#drawRow(row);
    this.#plotted?.draw(this.data.ringOf(this.#label), this.model.clock.now());
    const node = this.#owner();
    this.#fill(this.node, node ? this.#nodeEntries(node) : []);
  }

  // That is chosen, whose slot is, or that feeds the one that is.
  #owner() {
    const { nodes, pairs, relays } = this.model;
    const own = nodeOf(`${this.#label}/`, nodes);
    return nodes.get(own || nodeOf(questionsFor(this.#label, pairs, relays)[0]?.from ?? "", nodes));
  }

  #drawRow(row) {
    const now = this.model.clock.heardUntil();
    const value = row.shownValue;
    this.#fill(this.now, [
      ["label", row.label],
      ["type", `${row.type}, ${row.isOut ? "out-slot" : row.sensor ? `in-slot of sensor ${row.sensor}` : "in-slot"}`],
      ["value", row.refusal || (value === undefined ? "none yet" : valueText(value))],
      ["age", row.lastMoved === undefined ? "never" : ageText(now - row.lastMoved)],
      ["records", rateText(row.shownRate)],
      ...(row.sources.length > 0 ? [["from", row.sources.map(({ label }) => label).join(", ")]] : []),
    ]);
    const counts = Object.entries(row.slot).filter(([name, count]) => !notCounts.has(name) && typeof count === "number");
    this.#fill(this.counts, counts.map(([name, count]) => [countName(name), String(count)]));
  }

  #nodeEntries({ node, type, state, reason, settings, remarks, counts }) {
    return [
      ["node", `${node} (${type})`],
      ["state", reason ? `${state}: ${reason}` : state],
      ...(settings ? [["settings", typeof settings === "string" ? settings : JSON.stringify(settings)]] : []),
      ...Object.entries(remarks ?? {}),
      ...Object.entries(counts ?? {}).map(([name, count]) => [name, String(count)]),
    ];
  }

  // Texts change, but the lines mostly stay, so that somebody can mark and copy them.
  #fill(place, entries) {
    const terms = place.querySelectorAll("dt");
    const isSame = terms.length === entries.length && entries.every(([name], i) => terms[i].textContent === name);
    if (!isSame) place.replaceChildren(...(entries.length > 0 ? [list(entries)] : []));
    else place.querySelectorAll("dd").forEach((value, i) => setText(value, entries[i][1]));
  }
}
