// What is shown stands in the address, behind the '#', so that a link shows the same and the browser's "back" works.

export const viewNames = ["table", "graph", "plots", "poses"];
export const maxPlots = 8;
export const everything = "*"; // chosen to see all that does not flow; no slot is called so

/** What an address asks for: the view, the words of the search, the label that is chosen, and those that are plotted. */
export function readAddress(hash) {
  const words = new URLSearchParams(hash.replace(/^#/, ""));
  const view = words.get("view");
  return {
    view: viewNames.includes(view) ? view : viewNames[0],
    search: words.get("search") ?? "",
    chosen: words.get("chosen") ?? "",
    plots: [...new Set(words.getAll("plot"))].slice(0, maxPlots),
  };
}

/** The address that readAddress() reads as that. */
export function writeAddress({ view, search, chosen, plots }) {
  const words = new URLSearchParams({ view });
  if (search) words.set("search", search);
  if (chosen) words.set("chosen", chosen);
  for (const label of plots) words.append("plot", label);
  return `#${words}`;
}

/** The address of the page. "change" comes after each change, also by the browser's buttons. */
export class Address extends EventTarget {
  constructor() {
    super();
    this.state = readAddress(location.hash);
    addEventListener("popstate", () => this.#take(readAddress(location.hash)));
  }

  /** Changes a part, such as {view: "graph"}. While a text is being typed, one entry in the history is enough. */
  change(part, isTyping = false) {
    const next = { ...this.state, ...part };
    const text = writeAddress(next);
    if (text === writeAddress(this.state)) return;
    this.#take(next);
    try {
      if (isTyping) history.replaceState(null, "", text);
      else history.pushState(null, "", text);
    } catch {
      // browsers allow so many changes a second; the next one brings all of it
    }
  }

  togglePlot(label) {
    const { plots } = this.state;
    if (plots.includes(label)) this.change({ plots: plots.filter((one) => one !== label) });
    else this.change({ plots: [...plots, label].slice(-maxPlots) });
  }

  #take(next) {
    this.state = next;
    this.dispatchEvent(new Event("change"));
  }
}
