// Moving and enlarging a picture, by mouse, finger and wheel.

const maxZoom = 20;
const margin = 10; // points
const smallest = 2.5; // points of the picture for one of the screen, that can still be read

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

  /** The picture is another one: all of it is shown, or its beginning where nobody could read it all: then false. */
  fit(width, height) {
    this.#whole = this.#around({ x: 0, y: 0, width, height });
    this.#show(this.#whole);
    if (this.#scale <= smallest) return true;
    this.showPart({ x: 0, y: 0, width: Math.min(width, smallest * this.svg.clientWidth), height: 0 });
    return false;
  }

  /** Shows a part of the picture, as large as may be, but not larger than it is. */
  showPart(part) {
    this.#show(this.#around(part));
  }

  // In the form of the screen, with a margin; what has no height begins at the top.
  #around({ x, y, width, height }) {
    const [wide, high] = [this.svg.clientWidth - 2 * margin, this.svg.clientHeight - 2 * margin];
    const scale = Math.max(1, width / wide, height / high);
    const [w, h] = [(wide + 2 * margin) * scale, (high + 2 * margin) * scale];
    return [x + (width - w) / 2, height === 0 ? y - margin : y + (height - h) / 2, w, h];
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
