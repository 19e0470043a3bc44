// The clock of the host, as far as the times of its records tell it.

/** The clock here may be another one, where the page comes through a tunnel. A record takes a while, so the least difference counts. */
export class HostClock {
  #offset = Infinity; // seconds that the clock here is ahead
  #least = Infinity; // since the last measure()
  #isNew = true;

  /** The connection is new: what comes first may be old. */
  begin() {
    this.#isNew = true;
    this.#least = Infinity;
  }

  /** A record has come that the host stamped with that time when it arrived there. */
  note(time) {
    this.#least = Math.min(this.#least, Date.now() / 1000 - time);
  }

  /** By how many seconds records came later than they could since the last call; 0 where none came. */
  measure() {
    const least = this.#least;
    this.#least = Infinity;
    if (!Number.isFinite(least)) return 0;
    this.#offset = Math.min(this.#offset, least);
    const lag = this.#isNew ? 0 : least - this.#offset;
    this.#isNew = false;
    return lag;
  }

  now() {
    return Date.now() / 1000 - (Number.isFinite(this.#offset) ? this.#offset : 0);
  }
}
