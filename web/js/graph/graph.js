// The graph: the text of the host as a picture, with what flows on its arrows.

import { make, makeSvg, setText } from "../dom.js";
import { askText } from "../host.js";
import { readLayout } from "./layout.js";
import { PanZoom } from "./panzoom.js";
import { whyMissing } from "../parts.js";
import { isFound } from "../row.js";
import { rateText } from "../text.js";

const drawPeriod = 250; // milliseconds
const askPeriod = 2_000;

export class Graph {
  #worker = null;
  #isBusy = false; // it lays out
  #waiting = ""; // the newest text, meanwhile
  #dot = "";
  #outcome = "Laying the graph out …"; // of the newest layout; empty where there is a picture
  #picture = { boxes: [], arrows: [], frames: [] };
  #isFitted = true;
  #labels = new Map(); // by the ids of boxes that a route leads to
  #search = "";
  #lastDraw = 0;
  #lastAsked = -Infinity;

  constructor(model, address) {
    this.model = model;
    this.address = address;
    this.svg = makeSvg("svg", { class: "graph", role: "group", "aria-label": "Graph of slots and routes" });
    this.note = make("p", { class: "hint" }, this.#outcome);
    this.element = make("div", { class: "graph-view" }, this.note, this.svg);
    this.panZoom = new PanZoom(this.svg);
  }

  /** It is in the page from now on. */
  show() {
    if (!this.#isFitted) this.#fit();
  }

  update() {
    this.#lastDraw = 0;
    const { search } = this.address.state;
    if (search !== this.#search) this.#showFound(search);
    this.#search = search;
  }

  // All that was found, or what is chosen where nothing is searched for.
  #showFound(search) {
    const isMeant = (row) => row && (search === "" ? row.label === this.address.state.chosen : isFound(row, search));
    const boxes = this.#picture.boxes.filter(({ slot }) => isMeant(this.model.byLabel.get(slot)));
    if (boxes.length === 0) return;
    const [left, top] = [Math.min(...boxes.map(({ x }) => x)), Math.min(...boxes.map(({ y }) => y))];
    const [right, bottom] = [Math.max(...boxes.map(({ x, width }) => x + width)), Math.max(...boxes.map(({ y, height }) => y + height))];
    this.panZoom.showPart({ x: left, y: top, width: right - left, height: bottom - top });
  }

  draw(time) {
    if (time - this.#lastAsked > askPeriod && this.model.goneSince === undefined) {
      this.#lastAsked = time;
      this.#ask();
    }
    if (time - this.#lastDraw < drawPeriod) return;
    this.#lastDraw = time;
    for (const shape of [...this.#picture.arrows, ...this.#picture.boxes, ...this.#picture.frames]) shape.draw?.();
  }

  async #ask() {
    try {
      const dot = await askText("/graph", { form: "dot" });
      if (dot === this.#dot) return this.#say(this.#outcome);
      await this.model.readRoutes();
      this.#dot = this.#waiting = dot;
      this.#layOut();
    } catch (error) {
      if (!(error instanceof TypeError)) this.#say(error.message);
    }
  }

  // One text after the other, for a large graph may change faster than it is laid out.
  #layOut() {
    if (this.#isBusy || this.#waiting === "") return;
    this.#isBusy = true;
    this.#workerFor().postMessage(this.#waiting);
    this.#waiting = "";
  }

  #workerFor() {
    if (this.#worker) return this.#worker;
    this.#worker = new Worker("/js/graph/layout-worker.js", { type: "module" });
    this.#worker.onerror = async () => this.#end((await whyMissing("/parts/viz.js")) ?? "The graph cannot be laid out.");
    this.#worker.onmessage = ({ data: { layout, problem } }) => {
      this.#isBusy = false;
      if (problem) this.#end(`The graph cannot be laid out: ${problem}`);
      else this.#show(readLayout(layout));
      this.#layOut();
    };
    return this.#worker;
  }

  #end(outcome) {
    this.#outcome = outcome;
    this.#say(outcome);
  }

  #say(text) {
    this.note.hidden = text === "";
    setText(this.note, text);
  }

  #show(picture) {
    this.#end(picture.boxes.length > 0 ? "" : "There is nothing to draw: the host has no slots.");
    this.#picture = picture;
    this.#labels = new Map(this.model.pairs.flatMap(({ from, to, tail, head }) => [[tail, from], [head, to]]));
    this.svg.replaceChildren(
      ...picture.frames.map((frame) => this.#frame(frame)),
      ...picture.boxes.map((box) => this.#box(box)),
      ...picture.arrows.map((arrow) => this.#arrow(arrow)),
    );
    this.#fit();
    this.#lastDraw = 0;
  }

  // While another view is shown, there is no place to fit it to.
  #fit() {
    this.#isFitted = this.svg.clientWidth > 0;
    if (!this.#isFitted) return;
    const isReadable = this.panZoom.fit(this.#picture.width, this.#picture.height);
    if (!isReadable) this.#showFound(this.address.state.search);
  }

  // Something that can be chosen, by mouse and keyboard.
  #shape(kind, label, says, ...children) {
    const choose = () => this.address.change({ chosen: label });
    return makeSvg("g", { class: kind, role: "button", tabindex: "0", "aria-label": says, "data-label": label, onclick: choose,
      onkeydown: ({ key }) => key === "Enter" && choose() }, ...children);
  }

  #frame(frame) {
    const { name, label, x, y, width, height } = frame;
    const shape = this.#shape("frame", name, label, makeSvg("rect", { x, y, width, height, rx: 4 }),
      makeSvg("text", { x: x + width / 2, y: y + 16 }, label));
    frame.draw = () => shape.classList.toggle("degraded", (this.model.nodes.get(name)?.state ?? "running") !== "running");
    return shape;
  }

  #box(box) {
    const { id, name, label, x, y, width, height, isMissing, isSensor } = box;
    const slot = (box.slot = this.#labels.get(id) ?? name);
    const shape = this.#shape("box", slot, label, makeSvg("rect", { x, y, width, height, rx: 6 }),
      makeSvg("text", { x: x + width / 2, y: y + height / 2 + 5 }, label));
    shape.classList.toggle("missing", isMissing);
    shape.classList.toggle("sensor", isSensor);
    box.draw = () => {
      const row = this.model.byLabel.get(slot);
      const { search, chosen } = this.address.state;
      shape.classList.toggle("unfound", search !== "" && !(row && isFound(row, search)));
      shape.classList.toggle("chosen", row !== undefined && row.label === chosen);
    };
    return shape;
  }

  // An arrow is red where its route does not connect, and where nothing has come for a while.
  #arrow(arrow) {
    const { tail, head, path, tip, at, isBroken, isDotted, why } = arrow;
    const [from, to] = [tail, head].map((id) => this.#labels.get(id) ?? id);
    const rate = makeSvg("text", { x: at[0], y: at[1] + 2 });
    const shape = this.#shape("arrow", to, `${from} to ${to}`, makeSvg("title", {}, why || `${from} → ${to}`),
      makeSvg("path", { class: "wide", d: path }), makeSvg("path", { d: path }), makeSvg("path", { class: "tip", d: tip }), rate);
    shape.dataset.from = from;
    shape.classList.toggle("dotted", isDotted);
    arrow.draw = () => {
      const row = this.model.byLabel.get(from);
      const isInside = isDotted || !row?.isOut; // a node, or a link between fields
      shape.dataset.kind = isBroken ? "broken" : isInside ? "inside" : row.isStill(this.model.clock.now()) ? "still" : "flows";
      setText(rate, isInside || isBroken ? "" : rateText(row.rate));
    };
    return shape;
  }
}
