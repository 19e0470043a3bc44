// The newest points of one slot, for its plot.

const minGap = 1; // seconds
const gapFactor = 5;

/**
 * At most `capacity` points, none older than `span` seconds, each with the same number of components. Where records are
 * missing stands a point of NaN, so that no line is drawn over it: where the caller says so, and where far more time
 * passed than between the records before. All memory is taken at construction.
 */
export class Ring {
  #columns;
  #start = 0;
  #size = 0;
  #last = -Infinity;
  #typical = 0; // seconds between two records

  constructor(components, capacity = 20_000, span = 120) {
    this.capacity = capacity;
    this.span = span;
    this.#columns = Array.from({ length: components + 1 }, () => new Float64Array(capacity));
  }

  get size() {
    return this.#size;
  }
  get components() {
    return this.#columns.length - 1;
  }

  /** Times are seconds, and never go back: one that does counts as the one before. */
  add(time, values) {
    const at = Math.max(time, this.#last);
    const interval = at - this.#last;
    if (this.#size > 0 && this.#typical > 0 && interval > Math.max(minGap, gapFactor * this.#typical)) this.breakLine();
    if (Number.isFinite(interval)) this.#typical += (interval - this.#typical) / (this.#typical === 0 ? 1 : 8);
    this.#put(at, values);
    this.#last = at;
  }

  /** Records are missing here. */
  breakLine() {
    if (this.#size > 0 && !Number.isNaN(this.#columns[1][this.#place(this.#size - 1)])) this.#put(this.#last, []);
  }

  /** Times and components, oldest first, for uPlot: null where the line is broken. The lists are filled anew. */
  readInto(lists, now) {
    while (this.#size > 0 && this.#columns[0][this.#start] < now - this.span) this.#forgetFirst();
    this.#columns.forEach((column, index) => {
      const list = (lists[index] ??= []);
      list.length = this.#size;
      for (let i = 0; i < this.#size; i += 1) {
        const number = column[this.#place(i)];
        list[i] = Number.isNaN(number) ? null : number;
      }
    });
    lists.length = this.#columns.length;
    return lists;
  }

  #put(time, values) {
    if (this.#size === this.capacity) this.#forgetFirst();
    const place = this.#place(this.#size);
    this.#columns[0][place] = time;
    for (let i = 1; i < this.#columns.length; i += 1) this.#columns[i][place] = values[i - 1] ?? NaN;
    this.#size += 1;
  }

  #forgetFirst() {
    this.#start = this.#place(1);
    this.#size -= 1;
  }

  #place(index) {
    return (this.#start + index) % this.capacity;
  }
}
