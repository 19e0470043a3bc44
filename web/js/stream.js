// Records of the host, as they come.

import { streamAddress } from "./host.js";

const firstPause = 250; // milliseconds before it is tried again
const maxPause = 2_000;
const labelsAtOnce = 100; // names may be long, and a message has its limit

/** For measurements from outside: records and batches that were taken, when the newest came to the host, and when the first value was shown. */
export const statistics = { records: 0, dropped: 0, batches: 0, newest: 0, firstValue: null, slots: 0 };
window.ostrelStatistics = statistics;

/**
 * One connection, that comes back by itself. Calls onRecord(label, time, stamp, value) for each record, onDropped(count) when
 * the server says that more are missing, onGap(label) for each slot of which some are, onRefused(label, why), with an empty why once
 * the server takes it after all, onOpen() and onGone(), and after each message with records onBatch(time) with the time of the newest one.
 */
export class Stream {
  #socket = null;
  #labels = new Set(); // that are asked for
  #names = new Map(); // labels by the server's number
  #dropped = 0;
  #pace = undefined; // milliseconds
  #pause = firstPause;

  constructor(listener) {
    this.listener = listener;
    this.#open();
  }

  get isOpen() {
    return this.#socket?.readyState === WebSocket.OPEN;
  }

  /** Asks for these labels and no others. */
  watch(labels) {
    const wanted = new Set(labels);
    this.#say("unsubscribe", [...this.#labels].filter((label) => !wanted.has(label)));
    this.#say("subscribe", [...wanted].filter((label) => !this.#labels.has(label)));
    this.#labels = wanted;
    for (const [id, label] of this.#names) if (!wanted.has(label)) this.#names.delete(id);
    statistics.slots = this.#names.size;
  }

  /** Batches may come every so many milliseconds, 16 to 100. They come more often where records would find no room at the host, or others ask for it. */
  setPace(milliseconds) {
    if (milliseconds === this.#pace) return;
    this.#pace = milliseconds;
    this.#sayPace();
  }

  #sayPace() {
    if (this.isOpen && this.#pace !== undefined) this.#socket.send(JSON.stringify({ op: "pace", milliseconds: this.#pace }));
  }

  /** Asks once more for labels that were refused, for their slots may be there by now. */
  retry(labels) {
    this.#say("subscribe", labels.filter((label) => this.#labels.has(label)));
  }

  #say(op, labels) {
    if (!this.isOpen) return;
    for (let i = 0; i < labels.length; i += labelsAtOnce)
      this.#socket.send(JSON.stringify({ op, labels: labels.slice(i, i + labelsAtOnce) }));
  }

  #open() {
    this.#socket = new WebSocket(streamAddress(), ["ostrel.batch.v1"]);
    this.#socket.onopen = () => {
      this.#pause = firstPause;
      this.#dropped = 0;
      this.#names.clear();
      statistics.slots = 0;
      this.#sayPace();
      this.#say("subscribe", [...this.#labels]);
      this.listener.onOpen();
    };
    this.#socket.onmessage = ({ data }) => this.#take(JSON.parse(data));
    this.#socket.onclose = () => {
      this.listener.onGone();
      setTimeout(() => this.#open(), this.#pause);
      this.#pause = Math.min(2 * this.#pause, maxPause);
    };
  }

  #take(message) {
    for (const { id, label } of message.slots ?? []) {
      this.#names.set(id, label);
      this.listener.onRefused(label, "");
    }
    statistics.slots = this.#names.size;
    if (message.op === "error" && message.label !== undefined) this.listener.onRefused(message.label, message.message);
    if (message.op !== "batch") return;
    if (message.dropped > this.#dropped) {
      this.listener.onDropped(message.dropped - this.#dropped);
      this.#dropped = message.dropped;
    }
    for (const [id] of message.gaps ?? []) this.listener.onGap(this.#names.get(id));
    for (const [id, time, stamp, value] of message.records) {
      const label = this.#names.get(id);
      if (label !== undefined) this.listener.onRecord(label, time, stamp, value);
    }
    statistics.batches += 1;
    statistics.records += message.records.length;
    statistics.dropped = message.dropped;
    if (message.records.length === 0) return;
    statistics.newest = message.records.at(-1)[1];
    this.listener.onBatch(statistics.newest);
  }
}
