// A camera that goes round a point: drag, wheel, or the keys of the arrows with + and -.

const nearest = 0.2; // metres
const farthest = 200;

export class Orbit {
  #around = 0.7; // radians about the y axis
  #above = 0.45; // radians
  #distance = 5; // metres
  #target = [0, 1, 0];
  #last = null;

  constructor(camera, element) {
    this.camera = camera;
    element.addEventListener("pointerdown", (event) => {
      element.setPointerCapture(event.pointerId);
      this.#last = [event.clientX, event.clientY];
    });
    element.addEventListener("pointermove", ({ clientX, clientY, buttons }) => {
      if (!this.#last || buttons === 0) return;
      this.#turn((this.#last[0] - clientX) / 200, (clientY - this.#last[1]) / 200);
      this.#last = [clientX, clientY];
    });
    element.addEventListener("wheel", (event) => {
      event.preventDefault();
      this.#zoom(Math.exp(event.deltaY / 1000));
    }, { passive: false });
    element.addEventListener("keydown", (event) => this.#press(event));
    this.#place();
  }

  #press(event) {
    const turns = { ArrowLeft: [-0.1, 0], ArrowRight: [0.1, 0], ArrowUp: [0, 0.1], ArrowDown: [0, -0.1] };
    const zooms = { "+": 0.9, "-": 1 / 0.9 };
    if (turns[event.key]) this.#turn(...turns[event.key]);
    else if (zooms[event.key]) this.#zoom(zooms[event.key]);
    else return;
    event.preventDefault();
  }

  #turn(around, above) {
    this.#around += around;
    this.#above = Math.min(Math.max(this.#above + above, -1.5), 1.5);
    this.#place();
  }

  #zoom(factor) {
    this.#distance = Math.min(Math.max(this.#distance * factor, nearest), farthest);
    this.#place();
  }

  #place() {
    const flat = Math.cos(this.#above) * this.#distance;
    const [x, y, z] = this.#target;
    this.camera.position.set(x + Math.sin(this.#around) * flat, y + Math.sin(this.#above) * this.#distance, z + Math.cos(this.#around) * flat);
    this.camera.lookAt(x, y, z);
  }
}
