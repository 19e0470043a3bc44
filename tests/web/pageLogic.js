// pageLogic.js FOLDER: what the page computes, from the modules in that folder, without a browser.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { test } from "node:test";

const load = (name) => import(join(process.argv[2], `${name}.js`));
const { readAddress, writeAddress } = await load("address");
const { HostClock } = await load("clock");
const { numbersOf } = await load("plot/components");
const { readLayout } = await load("graph/layout");
const { placeOf, posesOf } = await load("poses/posedata");
const { Ring } = await load("plot/ring");
const { questionsFor } = await load("routes");
const { isFound, Row } = await load("row");
const { valueText } = await load("text");

// What browsers have, as far as a stream needs it.
class Socket {
  static OPEN = 1;
  readyState = 1;
  said = [];
  constructor(address) {
    Object.assign(this, { address });
    Socket.newest = this;
  }
  send(text) {
    this.said.push(JSON.parse(text));
  }
  hear(message) {
    this.onmessage({ data: JSON.stringify(message) });
  }
}
Object.assign(globalThis, { WebSocket: Socket, window: globalThis, location: { protocol: "http:", host: "here:1", search: "?token=a%26b" } });
const { Stream } = await load("stream");

test("the page asks at once for all that main.js imports, and what that imports", () => {
  const read = (path) => readFileSync(join(process.argv[2], path), "utf8");
  const needed = new Set();
  const walk = (path) => {
    if (needed.has(path)) return;
    needed.add(path);
    for (const [, name] of read(path).matchAll(/^import .*"(\..+)";$/gm)) walk(join(dirname(path), name));
  };
  walk("main.js");
  const named = [...read("../index.html").matchAll(/(?:href|src)="\/js\/(.+?)"/g)].map(([, path]) => path);
  assert.deepEqual(named.sort(), [...needed].sort());
});

test("a ring keeps the newest points, and breaks its line where records are missing", () => {
  const read = (ring, now = 0) => ring.readInto([], now);
  const ring = new Ring(1, 4, 100);
  for (const time of [1, 2, 3]) ring.add(time, [10 * time]);
  assert.deepEqual(read(ring), [[1, 2, 3], [10, 20, 30]]);
  ring.breakLine();
  ring.breakLine();
  assert.deepEqual(read(ring)[1], [10, 20, 30, null]);
  ring.add(4, [40]);
  assert.deepEqual(read(ring), [[2, 3, 3, 4], [20, 30, null, 40]]);
  ring.add(40, [50]);
  assert.deepEqual(read(ring), [[3, 4, 4, 40], [null, 40, null, 50]], "as long a pause is a gap");
  ring.add(39, [60]);
  assert.deepEqual(read(ring, 104)[0], [4, 4, 40, 40], "time does not go back");
  assert.deepEqual(read(ring, 105)[0], [40, 40], "the others are too old");
});

test("an address says what is shown, and any other one is read as far as it makes sense", () => {
  const state = { view: "plots", search: "a b&c", chosen: "Context/<b>&#'\"", plots: ["x=1&y", "é/~1"] };
  assert.deepEqual(readAddress(writeAddress(state)), state);
  const labels = Array.from({ length: 20 }, (_, i) => `plot=${i % 10}`).join("&");
  assert.deepEqual(readAddress(`#view=no&${labels}&%ff=%`), { view: "table", search: "", chosen: "", plots: [..."01234567"] });
});

test("values are short texts and lists of numbers", () => {
  for (const [value, text, numbers] of [
    [0.1234567, "0.123457", [0.1234567]],
    [123456789, "123456789", [123456789]],
    [null, "no number", [NaN]],
    [true, "true", [1]],
    [[1, 2.5, null], "1 2.5 no number", [1, 2.5, NaN]],
    ["x".repeat(300), `${"x".repeat(200)}…`, []],
    [[[1, 2], [3, 4]], "[2] (1 2) (3 4)", [1, 2, 3, 4]],
    [[], "", []],
    [Array(20).fill(7), "[20] 7 7 7 7 7 7 7 7 …", Array(16).fill(7)],
    [{ width: 64, height: 48, format: "RGB", bytes: 9216 }, "64 × 48 RGB", []],
  ]) {
    assert.equal(valueText(value), text);
    assert.deepEqual(numbersOf(value), numbers);
  }
});

test("what explains a slot: ways through filters from where they begin or break, else what it feeds", () => {
  const pairs = [
    { from: "N/OSC/wand", to: "N/Filter/in", reason: "" },
    { from: "N/Filter/out", to: "N/Wand", reason: "" },
    { from: "N/OSC/wnd", to: "N/Wand", reason: "no such label" },
    { from: "N/A/out", to: "N/B/in", reason: "" },
    { from: "N/B/out", to: "N/A/in", reason: "" },
  ];
  const relays = new Set(["N/Filter", "N/A", "N/B"]);
  const asked = (label) => questionsFor(label, pairs, relays).map(({ from, to }) => `${from} ${to}`);
  assert.deepEqual(asked("N/Wand"), ["N/OSC/wand N/Wand", "N/OSC/wnd N/Wand"]);
  assert.deepEqual(asked("N/OSC/wand"), ["N/OSC/wand N/Filter/in"]);
  assert.deepEqual(asked("N/A/in"), [], "a circle has no beginning");
  assert.deepEqual(asked("N/Nothing"), []);
});

const row = (label, type, value, direction = "out") => Object.assign(new Row({ label, type, direction }), { label, type, value });

test("poses are pairs of position and rotation, places and rigid matrices; those of sensors hide what feeds them", () => {
  const device = [row("D/position", "Vec3f", [1, 2, 3]), row("D/rotation", "Rotation", [0, 0, 0, 0])];
  const sensor = row("S/position", "Vec3d", undefined, "in");
  sensor.sources = [device[0]];
  const matrices = [[1, 0, 0, 4, 0, 0, -1, 5, 0, 1, 0, 6, 0, 0, 0, 1], [2, 0, 0, 4, 0, 1, 0, 5, 0, 0, 1, 6, 0, 0, 0, 1]].map((value, i) => row(`M${i}`, "Matrix4f", value));
  const poses = posesOf([...device, sensor, ...matrices, row("T/position", "Float", 1)]);
  assert.deepEqual(poses.map(({ name }) => name), ["D", "S", "M0", "M1"]);
  assert.deepEqual(poses.map((pose) => placeOf(pose)?.position), [[1, 2, 3], [1, 2, 3], [4, 5, 6], undefined]);
  assert.deepEqual(placeOf(poses[2]).turn[1], [0, 0, -1]);
  assert.deepEqual(posesOf([device[0], sensor]).map(({ name }) => name), ["S"]);
});

test("a row tells how old its newest record is, and one that was old when it was first seen stays old", () => {
  const one = new Row({ label: "N/a", type: "Float", direction: "out" });
  one.update({ label: "N/a", short: "a", type: "Float", direction: "out", written: 5 }, 0);
  assert.equal(one.isStill(0), true, "nothing came yet");
  one.take(100, 40, 1);
  assert.equal(one.lastMoved, 40);
  one.take(100.5, 41, 2);
  assert.deepEqual([one.lastMoved, one.isStill(102), one.isStill(103)], [100.5, false, true]);
  one.polled = 3;
  one.take(104, 104, null);
  assert.equal(one.shownValue, null, "NaN is newer than what was polled");
  one.isWatched = true;
  one.measure(1);
  for (let i = 1; i <= 9; i += 1) one.take(104 + i / 10, 104, i);
  one.measure(1);
  assert.equal(one.rate.toFixed(3), "10.000", "a batch that has not come yet slows nothing down");
  assert.deepEqual(["A FLOAT", "n/A b", ""].map((search) => isFound(one, search)), [true, false, true]);
});

test("the host's clock is known by the record that was quickest", (context) => {
  const { now } = Date;
  context.after(() => (Date.now = now));
  Date.now = () => 1_000_000;
  const clock = new HostClock();
  clock.note(899.5); // an old one, as it may come first
  clock.note(900);
  assert.deepEqual([clock.measure(), clock.now(), clock.heardUntil()], [0, 900, 900]);
  clock.note(899.9);
  assert.equal(clock.heardUntil(), 899.9, "what came just now is new");
  clock.measure();
  clock.note(899.2);
  const seconds = (number) => Math.round(100 * number) / 100;
  assert.equal(seconds(clock.measure()), 0.8);
  assert.deepEqual([clock.measure(), seconds(clock.now())], [0, 900]);
  for (let i = 0; i < 1000; i += 1) {
    clock.note(899.2);
    clock.measure();
  }
  clock.note(899.2);
  assert.deepEqual([clock.measure(), seconds(clock.now())], [0, 899.2], "a drift is followed");
  clock.begin();
  clock.note(500);
  assert.deepEqual([clock.now(), clock.measure(), clock.now()], [500, 0, 500], "another host has another clock");
});

test("a stream asks for what is wanted, also anew, and passes on each record and each loss once", (context) => {
  context.mock.method(globalThis, "setTimeout", (again) => again());
  const heard = [];
  const names = ["onRecord", "onBatch", "onDropped", "onGap", "onRefused", "onOpen", "onGone"];
  const stream = new Stream(Object.fromEntries(names.map((name) => [name, (...words) => heard.push([name, ...words])])));
  const before = Socket.newest;
  assert.equal(before.address, "ws://here:1/?token=a%26b");
  stream.watch(["a", "b"]);
  stream.watch(["b", "c"]);
  assert.deepEqual(before.said.map(({ op, labels }) => [op, ...labels]), [["subscribe", "a", "b"], ["unsubscribe", "a"], ["subscribe", "c"]]);
  stream.setPace(50);
  before.onclose();
  const now = Socket.newest;
  now.onopen();
  assert.deepEqual(now.said, [{ op: "pace", milliseconds: 50 }, { op: "subscribe", labels: ["b", "c"] }]);
  now.hear({ op: "subscribed", slots: [{ id: 7, label: "b" }] });
  now.hear({ op: "error", label: "c", message: "no such slot" });
  stream.retry(["c"]);
  assert.deepEqual(now.said.at(-1), { op: "subscribe", labels: ["c"] });
  now.hear({ op: "subscribed", slots: [{ id: 8, label: "c" }] });
  for (let i = 0; i < 2; i += 1) now.hear({ op: "batch", records: [], gaps: [[7, 3]], dropped: 3 });
  now.hear({ op: "batch", records: [[7, 10, 9, [1, 2]], [99, 11, 9, 0]], dropped: 3 });
  assert.deepEqual(heard, [["onGone"], ["onOpen"], ["onRefused", "b", ""], ["onRefused", "c", "no such slot"], ["onRefused", "c", ""], ["onDropped", 3], ["onGap", "b"], ["onGap", "b"],
    ["onRecord", "b", 10, 9, [1, 2]], ["onBatch", 11]]);
});

test("a layout becomes boxes, frames and arrows, and names their plain texts", () => {
  const picture = readLayout({
    bb: "0,0,200,100",
    objects: [
      { name: "cluster N", label: "N", bb: "10,10,110,60" },
      { name: 'missing a\\\\"<b>', label: "a\\\\ ?", pos: "50,50", width: "1", height: "0.5", style: "dashed" },
      { name: "c", label: "c", pos: "150,50", width: "0.5", height: "0.5", style: "rounded,filled" },
    ],
    edges: [{ tail: 1, head: 2, pos: "e,132,50 86,50 100,50 110,50 122,50", lp: "100,60", color: "red", tooltip: "no slot" }],
  });
  assert.deepEqual(picture.frames, [{ name: "N", label: "N", x: 10, y: 40, width: 100, height: 50 }]);
  const [missing, sensor] = picture.boxes;
  assert.deepEqual([missing.name, missing.label, missing.x, missing.y, missing.isMissing], ['a\\"<b>', "a\\ ?", 14, 32, true]);
  assert.equal(sensor.isSensor, true);
  const [arrow] = picture.arrows;
  assert.deepEqual([arrow.tail, arrow.path, arrow.at, arrow.isBroken], [missing.id, "M86,50C100,50 110,50 122,50", [100, 40], true]);
  assert.match(arrow.tip, /^M132,50L122,/);
});
