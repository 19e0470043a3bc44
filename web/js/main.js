// Puts the page together.

import { Address, viewNames } from "./address.js";
import { Details, everything } from "./details.js";
import { make, setText } from "./dom.js";
import { Graph } from "./graph/graph.js";
import { Keys } from "./keys.js";
import { Model } from "./model.js";
import { PlotData } from "./plot/plotdata.js";
import { Plots } from "./plot/plots.js";
import { Poses } from "./poses/poses.js";
import { Status } from "./status.js";
import { Table } from "./table.js";

const at = (id) => document.getElementById(id);
const search = at("search");

const address = new Address();
const model = new Model();
const data = new PlotData(model);
const views = {
  table: new Table(model, address),
  graph: new Graph(model, address),
  plots: new Plots(model, address, data),
  poses: new Poses(model, address),
};
const details = new Details(model, address, data, at("details"));
const status = new Status(model, { title: at("title"), status: at("status"), notice: at("notice") });
new Keys(address, search, at("help"));

const tabs = viewNames.map((view, index) =>
  make("button", { "data-view": view, title: `key ${index + 1}`, onclick: () => address.change({ view }) }, view));
at("views").append(...tabs, make("button", { title: "why does it not flow (w)", onclick: () => address.change({ chosen: everything }) }, "why?"),
  make("button", { title: "keys (?)", onclick: () => at("help").showModal() }, "?"));
search.addEventListener("input", () => address.change({ search: search.value }, true));

let shown = "";

/** Shows what the address asks for. */
function update() {
  const { view, search: words, chosen, plots } = address.state;
  if (search.value !== words) search.value = words;
  for (const tab of tabs) tab.setAttribute("aria-current", tab.dataset.view === view ? "page" : "false");
  setText(tabs[viewNames.indexOf("plots")], plots.length > 0 ? `plots ${plots.length}` : "plots");
  const seen = [...new Set([...plots, chosen])];
  data.setLabels(seen);
  model.lookAt(seen);
  if (shown !== view) {
    at("view").replaceChildren(views[view].element);
    views[view].show?.();
  }
  shown = view;
  views[view].update();
  details.update();
}

address.addEventListener("change", update);
model.addEventListener("structure", update);
addEventListener("resize", update);
update();

let measured = performance.now();
setInterval(() => {
  const seconds = (performance.now() - measured) / 1000;
  measured += 1000 * seconds;
  model.measure(seconds);
  status.measure(seconds, model.clock.measure());
}, 1000);

function draw(time) {
  views[shown].draw(time);
  details.draw(time);
  requestAnimationFrame(draw);
}
requestAnimationFrame(draw);
