// How old records are at each slot on their way, as the host measures it.

import { make } from "./dom.js";
import { ask } from "./host.js";
import { millisecondsText } from "./text.js";

const seconds = 2;

/** A button that measures, and what was measured, between two labels. */
export function agesOf({ from, to }) {
  const place = make("div");
  const button = make("button", { onclick: () => measure() }, `Measure ages for ${seconds} s`);
  const measure = async () => {
    button.disabled = true;
    place.replaceChildren(make("p", { class: "hint" }, "measuring …"));
    place.replaceChildren(...(await ask("/delay", { from, to, seconds }).then(answerOf, (error) => [make("p", { class: "hint" }, error.message)])));
    button.disabled = false;
  };
  return make("div", {}, button, place);
}

function answerOf({ hops, clock }) {
  const line = (kind, words) => make("tr", {}, ...words.map((word) => make(kind, {}, word)));
  const rows = hops.map(({ hop, records, median, p99, bound }) => line("td", [hop, String(records), millisecondsText(median), millisecondsText(p99), `± ${millisecondsText(bound)}`]));
  const table = make("table", { class: "ages" }, line("th", ["record at", "records", "median", "99 %", "may be wrong by"]), ...rows);
  const about = clock === null ? "Right as far as the stamps are by the clock of the host's machine." : `Clocks: ${JSON.stringify(clock)}`;
  return [table, make("p", { class: "hint" }, about)];
}
