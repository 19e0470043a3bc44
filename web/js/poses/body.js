// One pose in the scene: axes, or a ball where nothing says how it is turned, and a trail.

import { colour, make, setText } from "../dom.js";
import { placeOf } from "./posedata.js";

const trailPoints = 300;

/** Is to be updated for each picture. `three` is that library; the colour has a name in the style sheet. */
export class Body {
  #count = 0;

  constructor(three, pose, hue) {
    this.three = three;
    this.pose = pose;
    this.hue = hue;
    this.axes = new three.AxesHelper(0.25);
    this.ball = new three.Mesh(new three.SphereGeometry(0.025, 12, 8), new three.MeshBasicMaterial());
    this.body = new three.Group().add(this.axes, this.ball);
    this.points = new three.BufferAttribute(new Float32Array(3 * trailPoints), 3);
    this.trail = new three.Line(new three.BufferGeometry().setAttribute("position", this.points), new three.LineBasicMaterial());
    this.trail.frustumCulled = false;
    this.group = new three.Group().add(this.body, this.trail);
    this.entry = make("li", { "data-label": pose.name }, make("b", {}, "■ "), make("span", {}, pose.title), " ", make("output"));
    this.recolour();
  }

  recolour() {
    for (const { material } of [this.ball, this.trail]) material.color.set(colour(this.hue));
    this.entry.firstChild.style.color = colour(this.hue);
  }

  update() {
    const place = placeOf(this.pose);
    this.group.visible = place !== undefined;
    setText(this.entry.lastChild, place ? place.position.map((metres) => metres.toFixed(3)).join("  ") : "no pose yet");
    if (!place) return;
    this.axes.visible = place.rotation !== undefined || place.turn !== undefined;
    this.body.position.set(...place.position);
    if (place.turn) this.#turnBy(place.turn);
    else if (place.rotation) this.body.quaternion.set(...place.rotation).normalize();
    this.#extendTrail(place.position);
  }

  #turnBy([a, b, c]) {
    this.body.quaternion.setFromRotationMatrix(new this.three.Matrix4().set(...a, 0, ...b, 0, ...c, 0, 0, 0, 0, 1));
  }

  // What does not move leaves no trail.
  #extendTrail([x, y, z]) {
    const list = this.points.array;
    const last = 3 * (this.#count - 1);
    if (this.#count > 0 && list[last] === Math.fround(x) && list[last + 1] === Math.fround(y) && list[last + 2] === Math.fround(z)) return;
    if (this.#count === trailPoints) list.copyWithin(0, 3);
    else this.#count += 1;
    list.set([x, y, z], 3 * (this.#count - 1));
    this.points.needsUpdate = true;
    this.trail.geometry.setDrawRange(0, this.#count);
  }

  dispose() {
    for (const one of [this.axes, this.ball, this.trail]) {
      one.geometry.dispose();
      one.material.dispose();
    }
    this.entry.remove();
  }
}
