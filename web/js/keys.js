// The keyboard, beside what tables and pictures do with it themselves.

import { everything, viewNames } from "./address.js";
import { make } from "./dom.js";

const help = [
  ["1 2 3 4", "table, graph, plots, poses"],
  ["/", "search"],
  ["↑ ↓ Page↑ Page↓ Home End", "choose in the table"],
  ["p", "plot what is chosen, or do not"],
  ["w", "why: everything that does not flow"],
  ["Esc", "close what is open, then empty the search"],
  ["?", "this help"],
];

export class Keys {
  constructor(address, search, dialog) {
    this.address = address;
    this.search = search;
    this.dialog = dialog;
    const lines = help.map(([keys, does]) => make("tr", {}, make("td", {}, make("kbd", {}, keys)), make("td", {}, does)));
    dialog.append(make("h2", {}, "Keys"), make("table", {}, ...lines), make("button", { onclick: () => dialog.close() }, "Close"));
    addEventListener("keydown", (event) => this.#press(event));
  }

  #press(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || this.dialog.open) return;
    const isTyping = event.target === this.search;
    if (event.key === "Escape") return this.#leave();
    if (isTyping) return;
    const action = this.#actions[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  }

  get #actions() {
    const { chosen } = this.address.state;
    const views = viewNames.map((view, index) => [String(index + 1), () => this.address.change({ view })]);
    return {
      ...Object.fromEntries(views),
      "/": () => this.search.focus(),
      "?": () => this.dialog.showModal(),
      w: () => this.address.change({ chosen: everything }),
      p: () => chosen && chosen !== everything && this.address.togglePlot(chosen),
    };
  }

  #leave() {
    const { chosen, search } = this.address.state;
    if (chosen) this.address.change({ chosen: "" });
    else if (search) this.address.change({ search: "" });
    this.search.blur();
  }
}
