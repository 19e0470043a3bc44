// The clock of the host, as far as the times of its records tell it.

const forgotten = 0.001; // seconds at each measure(), as clocks drift
const justNow = 0.25; // seconds, some batches

/**
 * Records a second, of as many as came in those seconds; `span` is how much later the newest of them came than the newest one before, by
 * the host's clock. As they come in batches, that is the better measure where they come regularly.
 */
export function rateOf(records, span, seconds) {
  return records / (Math.abs(span - seconds) < seconds / 2 ? span : seconds);
}

/** The clock here may be another one, where the page comes through a tunnel. A record takes a while, so the least difference counts. */
export class HostClock {
  #offset = Infinity; // seconds that the clock here is ahead
  #least = Infinity; // since the last measure()
  newest = -Infinity; // when the newest record came to the host, by its clock

  /** The connection is new, and may be to another host. */
  begin() {
    this.#offset = Infinity;
    this.#least = Infinity;
    this.newest = -Infinity;
  }

  /** A record has come that the host stamped with that time when it arrived there. */
  note(time) {
    this.newest = time;
    this.#least = Math.min(this.#least, Date.now() / 1000 - time);
  }

  /** By how many seconds records came later than they could since the last call; 0 where none came. */
  measure() {
    const least = this.#least;
    this.#least = Infinity;
    if (!Number.isFinite(least)) return 0;
    this.#offset = Math.min(this.#offset + forgotten, least);
    return least - this.#offset;
  }

  now() {
    const offset = Math.min(this.#offset, this.#least);
    return Date.now() / 1000 - (Number.isFinite(offset) ? offset : 0);
  }

  /** The time up to which all is known; that of the newest record if that came just now, so that ages do not tremble with the batches. */
  heardUntil() {
    const now = this.now();
    return now - this.newest < justNow ? this.newest : now;
  }
}
