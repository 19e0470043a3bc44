// What is known of the host: its slots, sensors and nodes, and the records that come.

import { HostClock } from "./clock.js";
import { ask } from "./host.js";
import { relaysIn } from "./routes.js";
import { Row } from "./row.js";
import { Stream } from "./stream.js";

const usualPace = 100; // milliseconds between two batches
const refreshPeriod = 2_000; // milliseconds, the least
const maxRefreshPeriod = 5_000;
const rest = 50; // times as long as a look takes, for it takes the host's time as well
const keyOf = ({ direction, label }) => `${direction} ${label}`;

function problemOf(error) {
  if (error instanceof TypeError) return ""; // of a host that has gone the stream tells
  return error.name === "TimeoutError" ? error.message : `The host says: ${error.message}`;
}

/**
 * Events: "structure" when slots, sensors or routes are others than before, "counts" after each look at the host, "connection" when it
 * has gone or come back. For each record of a slot that is plotted, onPlotted(row) is called, and onGap(row) where
 * records are missing: of that row, or of all without one.
 */
export class Model extends EventTarget {
  rows = []; // those of sensors first
  byLabel = new Map();
  nodes = new Map(); // by the path
  pairs = []; // of slots that a route joins, or should: {from, to, tail, head, reason}
  relays = new Set(); // paths of nodes that pass on what they get, see readRelays()
  host = {};
  clock = new HostClock();
  problem = ""; // what was wrong with the last look
  goneSince = undefined; // milliseconds since 1970; undefined while the host is there
  taken = 0; // records in all
  dropped = 0; // records that the server says are missing
  onPlotted = () => {};
  onGap = () => {};
  #known = new Map(); // rows by direction and label
  #outs = new Map(); // by label
  #asked = []; // labels of slots that somebody looks at
  #needsNodes = false;
  #structure = "";
  #relaysOf = undefined; // the structure whose relays are known
  #relaysAsked = undefined; // the last question for them
  #refreshing = undefined;
  #stream;

  constructor() {
    super();
    this.#stream = new Stream({
      onRecord: (label, time, stamp, value) => this.#take(this.#outs.get(label), time, stamp, value),
      onBatch: (time) => this.clock.note(time),
      onDropped: (count) => (this.dropped += count),
      onGap: (label) => this.onGap(this.#outs.get(label)),
      onRefused: (label, why) => {
        if (this.#outs.has(label)) this.#outs.get(label).refusal = why;
      },
      onOpen: () => this.#open(),
      onGone: () => this.#close(),
    });
    this.#refreshAlways();
  }

  /** Counts rates anew; to be called once a second. */
  measure(seconds) {
    for (const row of this.#outs.values()) row.measure(seconds);
  }

  /**
   * Somebody looks at these slots, so sequences among them, or among what feeds them, are wanted, too; at nodes; and sees as much
   * with batches every `pace` milliseconds.
   */
  lookAt(labels, needsNodes, pace = usualPace) {
    this.#asked = labels;
    if (needsNodes && !this.#needsNodes) this.#readNodes().catch(() => {}); // the next look tells what is wrong
    this.#needsNodes = needsNodes;
    this.#stream.setPace(pace);
    this.#watch();
  }

  /** The routes may be others. */
  async readRoutes() {
    this.#relaysOf = this.#relaysAsked = undefined;
    this.#setPairs((await ask("/flow")).edges);
  }

  /** Reads the paths of nodes that pass on what they get, where slots or routes are others than the last time. */
  async readRelays() {
    const structure = this.#structure;
    if (this.#relaysOf === structure) return;
    const asked = (this.#relaysAsked = {}); // readRoutes() makes what comes then too old
    const relays = relaysIn(await ask("/graph", { form: "json" }));
    this.relays = relays;
    if (this.#relaysAsked === asked) this.#relaysOf = structure;
  }

  async #readNodes() {
    this.nodes = new Map((await ask("/nodes")).map((node) => [node.node, node]));
  }

  // What feeds a row is known by then, so that its values can be shown.
  #setPairs(pairs) {
    this.pairs = pairs;
    for (const row of this.rows) row.sources = [];
    for (const { from, to, reason } of this.pairs) {
      const source = this.#outs.get(from);
      const target = this.#known.get(keyOf({ direction: "in", label: to }));
      if (!reason && source && target && !target.sources.includes(source)) target.sources.push(source);
    }
    this.#watch();
    this.dispatchEvent(new Event("structure"));
  }

  #watch() {
    const rows = this.#asked.flatMap((label) => this.byLabel.get(label) ?? []);
    const asked = new Set(rows.flatMap((row) => [row, ...row.sources]));
    for (const row of this.#outs.values()) row.isWatched = !row.isSequence || asked.has(row);
    const shown = [...this.#outs.values()].filter(({ isWatched }) => isWatched);
    this.#stream.watch(shown.map(({ label }) => label));
    this.#stream.retry(shown.filter(({ refusal }) => refusal).map(({ label }) => label));
  }

  #take(row, time, stamp, value) {
    this.taken += 1;
    if (!row) return;
    row.take(time, stamp, value);
    if (row.isPlotted) this.onPlotted(row);
  }

  #open() {
    for (const row of this.rows) row.begin();
    this.clock.begin();
    this.goneSince = undefined;
    this.dispatchEvent(new Event("connection"));
    this.#refresh();
  }

  #close() {
    this.onGap();
    this.goneSince ??= Date.now();
    this.dispatchEvent(new Event("connection"));
    this.#askWhy();
  }

  // Browsers do not say why a stream is refused; a question is answered with the cause.
  async #askWhy() {
    this.problem = await ask("/host").then(() => "", problemOf);
    this.dispatchEvent(new Event("connection"));
  }

  async #refreshAlways() {
    for (;;) {
      const begun = performance.now();
      if (!document.hidden && this.goneSince === undefined) await this.#refresh();
      const pause = Math.min(Math.max(rest * (performance.now() - begun), refreshPeriod), maxRefreshPeriod);
      await new Promise((resolve) => setTimeout(resolve, pause));
    }
  }

  #refresh() {
    return (this.#refreshing ??= this.#look().finally(() => (this.#refreshing = undefined)));
  }

  // Names first, so that they are shown and asked for at once; then the pairs, without which sensors show no values.
  async #look() {
    try {
      const flow = ask("/flow");
      flow.catch(() => {}); // heard of below
      const [host, slots] = await Promise.all([ask("/host"), ask("/slots")]);
      this.host = host;
      this.#setSlots(slots);
      this.#watch();
      const { edges } = await flow;
      const structure = JSON.stringify([host.started, slots.map(({ label, type, direction, active, sensor }) => [label, type, direction, active, sensor]),
        edges.map(({ from, to, reason }) => [from, to, reason])]);
      if (structure !== this.#structure) this.#setPairs(edges);
      this.#structure = structure;
      if (this.#needsNodes) await this.#readNodes();
      if (this.rows.some((row) => row.sensor && row.sources.length === 0)) await this.#poll();
      this.problem = "";
    } catch (error) {
      this.problem = problemOf(error);
    }
    this.dispatchEvent(new Event("counts"));
  }

  /** What no out-slot tells: the fields of sensors that no route leads to. */
  async #poll() {
    for (const sensor of await ask("/sensors")) {
      const row = this.#known.get(keyOf({ direction: "in", label: sensor.label }));
      if (row) row.polled = sensor.value;
    }
  }

  #setSlots(slots) {
    const known = new Map();
    for (const slot of slots) {
      const before = this.#known.get(keyOf(slot));
      const row = before?.type === slot.type ? before : new Row(slot);
      row.update(slot, this.clock.now());
      known.set(keyOf(slot), row);
    }
    this.#known = known;
    const rows = [...known.values()];
    this.rows = [...rows.filter(({ sensor }) => sensor), ...rows.filter(({ sensor }) => !sensor)];
    this.#outs = new Map(rows.filter(({ isOut }) => isOut).map((row) => [row.label, row]));
    this.byLabel = new Map(rows.map((row) => [row.label, row]));
  }
}
