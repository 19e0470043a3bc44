// A slot, and what has come of it.

import { rateOf } from "./clock.js";

export const stillAfter = 2; // seconds without a record

/** A line of the table: a slot, with the name of the sensor that it serves. What feeds it are out-slots; an out-slot feeds itself. */
export class Row {
  sources = [];
  value = undefined; // the newest
  moved = undefined; // when it came, by the host's clock in seconds
  stamp = undefined;
  count = 0; // records that this page has taken
  rate = 0; // records a second
  refusal = ""; // why the host does not show its records
  isWatched = false; // its records come
  isPlotted = false;
  #isFirst = true;
  #counted = { count: 0, moved: undefined }; // at the last measure()
  #written = { count: Infinity, time: Infinity }; // as the host said it last

  constructor(slot) {
    this.label = slot.label;
    this.type = slot.type;
    this.isOut = slot.direction === "out";
  }

  /** Takes the counts that the host tells now. */
  update(slot, now) {
    if (this.isOut && !this.isWatched) this.#measureWritten(slot.written, now);
    this.slot = slot;
    this.sensor = slot.sensor ?? "";
    this.title = this.sensor || slot.short || slot.label;
    this.words = `${this.title} ${this.label} ${this.type}`.toLowerCase();
  }

  /** Sequences may be long, so they come only when somebody looks at them. */
  get isSequence() {
    return this.type.endsWith("[]");
  }

  /** The connection is new: what comes first is the newest record, however old it is, and its stamp says when it was. */
  begin() {
    this.#isFirst = true;
    this.refusal = "";
  }

  take(time, stamp, value) {
    this.moved = this.#isFirst && stamp > 0 && stamp < time ? stamp : time;
    this.#isFirst = false;
    this.stamp = stamp;
    this.value = value;
    this.count += 1;
  }

  /** Counts once a second what came. */
  measure(seconds) {
    const { count, moved } = this;
    if (this.isWatched) this.rate = rateOf(count - this.#counted.count, moved - this.#counted.moved, seconds);
    this.#counted = { count, moved };
  }

  /** Where no records are shown, the host says how many were written: by then, in seconds of its clock. */
  #measureWritten(written, now) {
    const { count, time } = this.#written;
    if (written > count) this.moved = now;
    if (now > time) this.rate = Math.max(written - count, 0) / (now - time);
    this.#written = { count: written, time: now };
  }

  /** Of what feeds it, the one that moved last; undefined where nothing does. */
  get newest() {
    if (this.isOut) return this;
    let newest;
    for (const source of this.sources) if (!newest || (source.moved ?? 0) > (newest.moved ?? 0)) newest = source;
    return newest;
  }

  /** What stands in its field, as far as is known. */
  get shownValue() {
    const value = this.newest?.value;
    return value === undefined ? this.polled : value; // null is no number
  }
  get shownRate() {
    return this.isOut ? this.rate : this.sources.reduce((sum, { rate }) => sum + rate, 0);
  }
  get lastMoved() {
    return this.newest?.moved;
  }
  /** A page that lags behind still counts. */
  isStill(now) {
    return this.shownRate === 0 && !(now - this.lastMoved <= stillAfter);
  }
}

/** Whether all words of a search stand in its names or its type. */
export function isFound(row, search) {
  return search.toLowerCase().split(/\s+/).every((word) => row.words.includes(word));
}
