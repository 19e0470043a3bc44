// Moving and enlarging a picture, by mouse, finger and wheel.

const maxZoom = 20;

/** Shows a part of an SVG by its viewBox. */
export class PanZoom {
  #whole = [0, 0, 1, 1]; // x, y, width, height
  #part = [0, 0, 1, 1];
  #last = null;
  #moved = 0; // points of the screen since the button went down

  constructor(svg) {
    this.svg = svg;
    svg.addEventListener("wheel", (event) => this.#zoom(event), { passive: false });
    svg.addEventListener("pointerdown", ({ clientX, clientY }) => {
      this.#last = [clientX, clientY];
      this.#moved = 0;
    });
    svg.addEventListener("click", (event) => this.#moved > 4 && event.stopPropagation(), { capture: true });
    svg.addEventListener("pointermove", (event) => this.#drag(event));
    for (const name of ["pointerup", "pointerleave", "pointercancel"]) svg.addEventListener(name, () => (this.#last = null));
  }

  /** The picture is another one: all of it is shown, small ones not larger than they are. */
  fit(width, height) {
    const { clientWidth, clientHeight } = this.svg;
    const grown = Math.max(1, Math.min(clientWidth / width, clientHeight / height));
    const margin = 10;
    const [w, h] = [width * grown + 2 * margin, height * grown + 2 * margin];
    this.#whole = [(width - w) / 2, (height - h) / 2, w, h];
    this.#show(this.#whole);
  }

  #show(part) {
    this.#part = part;
    this.svg.setAttribute("viewBox", part.join(" "));
  }

  // Points of the picture for one of the screen.
  get #scale() {
    return Math.max(this.#part[2] / this.svg.clientWidth, this.#part[3] / this.svg.clientHeight);
  }

  #zoom(event) {
    event.preventDefault();
    const [x, y, width, height] = this.#part;
    const wanted = Math.exp(event.deltaY / 500);
    const factor = Math.min(Math.max(wanted, this.#whole[2] / maxZoom / width), (2 * this.#whole[2]) / width);
    const bounds = this.svg.getBoundingClientRect();
    const [rightX, downY] = [(event.clientX - bounds.x) / bounds.width, (event.clientY - bounds.y) / bounds.height];
    this.#show([x + width * (1 - factor) * rightX, y + height * (1 - factor) * downY, width * factor, height * factor]);
  }

  #drag({ clientX, clientY, buttons }) {
    if (!this.#last || buttons === 0) return;
    const [x, y, width, height] = this.#part;
    this.#moved += Math.abs(clientX - this.#last[0]) + Math.abs(clientY - this.#last[1]);
    this.#show([x - (clientX - this.#last[0]) * this.#scale, y - (clientY - this.#last[1]) * this.#scale, width, height]);
    this.#last = [clientX, clientY];
  }
}
