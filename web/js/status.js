// The line that says how the page gets its records, and what it does not get.

import { rateOf } from "./clock.js";
import { make, setText } from "./dom.js";

const slowAfter = 0.5; // seconds

const number = new Intl.NumberFormat("en");

function noticeOf(goneSince, problem) {
  if (problem) return problem;
  if (goneSince === undefined) return "";
  const since = new Date(goneSince).toLocaleTimeString();
  return `The host has not answered since ${since}. What is shown is from before; it is tried again all the time.`;
}

export class Status {
  #taken = 0;
  #newest = 0; // seconds
  #slow = 0; // how many seconds it has been so

  constructor(model, places) {
    this.model = model;
    this.places = places;
    this.state = make("span", { class: "state" });
    this.rate = make("span", { id: "taken" });
    this.lost = make("span", { class: "bad", id: "dropped" });
    this.slow = make("span", { class: "bad", id: "slow" });
    places.status.append(this.state, this.rate, this.lost, this.slow);
    model.addEventListener("connection", () => this.update());
    model.addEventListener("counts", () => this.update());
    this.update();
  }

  /** To be called once a second: how many records came meanwhile, and how late. */
  measure(seconds, lag) {
    const { taken, dropped, clock: { newest } } = this.model;
    const rate = rateOf(taken - this.#taken, newest - this.#newest, seconds);
    setText(this.rate, `${number.format(Math.round(rate))} records/s, ${number.format(taken)} in all`);
    this.rate.dataset.taken = taken;
    this.#taken = taken;
    this.#newest = newest;
    setText(this.lost, dropped > 0 ? `${number.format(dropped)} records missing` : "");
    this.lost.title = "The host had no room for them in the queue of this page, or in a tap.";
    this.#slow = lag > slowAfter ? this.#slow + 1 : 0;
    setText(this.slow, this.#slow > 1 ? `${lag.toFixed(1)} s behind` : "");
    this.slow.title = "Records come later than they could: this page, or the way to it, is too slow for all of them.";
  }

  update() {
    const { host, goneSince, problem } = this.model;
    const name = host.name ?? location.host;
    setText(this.places.title, name);
    document.title = goneSince === undefined ? name : `(gone) ${name}`;
    setText(this.state, goneSince === undefined ? (host.pid ? "connected" : "connecting …") : "gone");
    this.state.classList.toggle("bad", goneSince !== undefined);
    document.body.classList.toggle("gone", goneSince !== undefined);
    const notice = noticeOf(goneSince, problem);
    this.places.notice.hidden = notice === "";
    setText(this.places.notice, notice);
  }
}
