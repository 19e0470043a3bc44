// Poses in space: axes with a trail, y upwards, on a grid of metres.

import { Body } from "./body.js";
import { Orbit } from "./camera.js";
import { colour, make, setText } from "../dom.js";
import { whyMissing } from "../parts.js";
import { posesOf, rowsOf } from "./posedata.js";
import { isFound } from "../row.js";

const period = 33; // milliseconds between two pictures
const hues = ["--plot-1", "--plot-2", "--plot-3", "--plot-4"];

export class Poses {
  #three = null;
  #loading = null;
  #bodies = new Map(); // by name and parts
  #lastDraw = 0;
  pace = period;

  constructor(model, address) {
    this.model = model;
    this.address = address;
    this.note = make("p", { class: "hint" });
    this.canvas = make("canvas", { tabindex: "0", "aria-label": "Poses: drag to turn, wheel to come nearer" });
    this.list = make("ul", { class: "legend" });
    this.element = make("div", { class: "poses" }, this.note, this.canvas, this.list);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.#recolour());
  }

  show() {
    return (this.#loading ??= this.#load());
  }

  async #load() {
    try {
      const three = await import("/parts/three.js");
      this.#begin(three);
    } catch (error) {
      this.canvas.hidden = true;
      setText(this.note, (await whyMissing("/parts/three.js")) ?? error.message);
    }
  }

  #begin(three) {
    try {
      if (!this.canvas.getContext("webgl2")) throw new Error("no context");
      this.renderer = new three.WebGLRenderer({ canvas: this.canvas });
    } catch {
      throw new Error("Poses need WebGL 2, which this browser does not give to this page; look at its settings for hardware acceleration. All else works.");
    }
    this.#three = three;
    this.scene = new three.Scene();
    this.camera = new three.PerspectiveCamera(50, 1, 0.05, 500);
    this.orbit = new Orbit(this.camera, this.canvas);
    this.#recolour();
    this.update();
  }

  #recolour() {
    if (!this.#three) return;
    this.scene.background = new this.#three.Color(colour("--ground"));
    if (this.grid) this.scene.remove(this.grid);
    this.grid?.dispose();
    this.grid = new this.#three.GridHelper(10, 10, colour("--text"), colour("--line"));
    this.scene.add(this.grid);
    for (const body of this.#bodies.values()) body.recolour();
  }

  /** The slots or the search are others. */
  update() {
    if (!this.#three) return;
    const { search } = this.address.state;
    const poses = posesOf(this.model.rows).filter((pose) => rowsOf(pose).some((row) => isFound(row, search)));
    const before = this.#bodies;
    this.#bodies = new Map();
    poses.forEach((pose, index) => {
      const key = rowsOf(pose).map(({ isOut, label }) => `${isOut} ${label}`).join("\n");
      const known = before.get(key);
      const body = known && rowsOf(known.pose).every((row, i) => row === rowsOf(pose)[i]) ? known : this.#add(pose, hues[index % hues.length]);
      this.#bodies.set(key, body);
    });
    for (const body of before.values()) if (![...this.#bodies.values()].includes(body)) this.#remove(body);
    this.note.hidden = poses.length > 0;
    setText(this.note, "No slot is a pose: none is called …/position with the type Vec3f or Vec3d, and none has the type Matrix4f or Matrix4d.");
  }

  #add(pose, hue) {
    const body = new Body(this.#three, pose, hue);
    this.scene.add(body.group);
    this.list.append(body.entry);
    return body;
  }

  #remove(body) {
    this.scene.remove(body.group);
    body.dispose();
  }

  draw(time) {
    if (!this.#three || time - this.#lastDraw < period) return;
    this.#lastDraw = time;
    const { clientWidth, clientHeight } = this.element;
    const size = this.renderer.getSize(new this.#three.Vector2());
    if (size.x !== clientWidth || size.y !== clientHeight) {
      this.renderer.setSize(clientWidth, clientHeight, false);
      this.camera.aspect = clientWidth / Math.max(clientHeight, 1);
      this.camera.updateProjectionMatrix();
    }
    for (const body of this.#bodies.values()) body.update();
    this.renderer.render(this.scene, this.camera);
  }
}
