// Puts the page together. What the first view does without comes when somebody looks at it, at the latest soon after the
// first look at the host: so it is there when the host has gone.

import "./ahead.js";
import { Address, everything, viewNames } from "./address.js";
import { make, setText } from "./dom.js";
import { Keys } from "./keys.js";
import { Later } from "./later.js";
import { Model } from "./model.js";
import { PlotData } from "./plot/plotdata.js";
import { Status } from "./status.js";
import { Table } from "./table.js";

const restAfter = 1_000; // milliseconds, in which the first values come

const at = (id) => document.getElementById(id);
const search = at("search");

const address = new Address();
const model = new Model();
const data = new PlotData(model);
const later = {
  graph: new Later(async () => new (await import("./graph/graph.js")).Graph(model, address), update),
  plots: new Later(async () => new (await import("./plot/plots.js")).Plots(model, address, data), update),
  poses: new Later(async () => new (await import("./poses/poses.js")).Poses(model, address), update),
  details: new Later(async () => new (await import("./details.js")).Details(model, address, data, at("details")), update),
};
const views = { table: new Table(model, address), ...later };
const status = new Status(model, { title: at("title"), status: at("status"), notice: at("notice") });
new Keys(address, search, at("help"));

const tabs = viewNames.map((view, index) =>
  make("button", { "data-view": view, title: `key ${index + 1}`, onclick: () => address.change({ view }) }, view));
at("views").append(...tabs, make("button", { title: "why does it not flow (w)", onclick: () => address.change({ chosen: everything }) }, "why?"),
  make("button", { title: "keys (?)", onclick: () => at("help").showModal() }, "?"));
search.addEventListener("input", () => address.change({ search: search.value }, true));

/** Shows what the address asks for. */
function update() {
  const { view, search: words, chosen, plots } = address.state;
  if (search.value !== words) search.value = words;
  for (const tab of tabs) tab.setAttribute("aria-current", tab.dataset.view === view ? "page" : "false");
  setText(tabs[viewNames.indexOf("plots")], plots.length > 0 ? `plots ${plots.length}` : "plots");
  const seen = [...new Set([...plots, chosen])];
  data.setLabels(seen);
  model.lookAt(seen, view === "graph" || chosen !== "", views[view].pace);
  if (at("view").firstElementChild !== views[view].element) {
    at("view").replaceChildren(views[view].element);
    views[view].show?.();
  }
  views[view].update();
  showDetails(chosen);
}

function showDetails(chosen) {
  if (chosen !== "") later.details.fetch();
  if (later.details.isThere) return later.details.update();
  at("details").hidden = chosen === "";
  at("details").replaceChildren(later.details.element);
}

address.addEventListener("change", update);
model.addEventListener("structure", update);
const fetchLater = () => Object.values(later).forEach((part) => part.fetch());
model.addEventListener("counts", function onFirstLook() {
  if (model.problem) return;
  model.removeEventListener("counts", onFirstLook);
  setTimeout(fetchLater, restAfter);
});
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
  views[address.state.view].draw(time);
  later.details.draw(time);
  requestAnimationFrame(draw);
}
requestAnimationFrame(draw);
