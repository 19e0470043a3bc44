// Parts of the page that do without the first moment.

import { make, setText } from "./dom.js";

/** Stands for a view until its script has come; `load` makes that view, and `loaded` is called when it is there. */
export class Later {
  #part = undefined;
  #loading = undefined;

  constructor(load, loaded) {
    this.load = load;
    this.loaded = loaded;
    this.note = make("p", { class: "hint" }, "Loading …");
  }

  get isThere() {
    return this.#part !== undefined;
  }
  get element() {
    return this.#part?.element ?? this.note;
  }
  get pace() {
    return this.#part?.pace;
  }

  fetch() {
    return (this.#loading ??= this.#load());
  }

  // Browsers may remember that a script did not come, so trying again is left to who looks.
  async #load() {
    try {
      this.#part = await this.load();
    } catch (error) {
      return setText(this.note, `This view did not come: ${error.message}. Load the page anew when the host answers.`);
    }
    this.loaded();
  }

  show() {
    return this.#part ? this.#part.show?.() : this.fetch();
  }
  update() {
    this.#part?.update();
  }
  draw(time) {
    this.#part?.draw(time);
  }
}
