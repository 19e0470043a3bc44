// trackers.js VALUES RATE PORT…: at each port a tracker that sends so many values RATE times a second, as one packet of Open
// Sound Control: a bundle of messages "/0", "/1" … with a number each. They are not in step with each other.
import { createSocket } from "node:dgram";

const [values, rate, ...ports] = process.argv.slice(2).map(Number);
const socket = createSocket("udp4");
const period = 1000 / rate; // milliseconds

const padded = (text) => Buffer.from(text + "\0".repeat(4 - (text.length % 4)));

function messageOf(i) {
  const message = Buffer.concat([padded(`/${i}`), padded(",f"), Buffer.alloc(4)]);
  const size = Buffer.alloc(4);
  size.writeUInt32BE(message.length);
  return Buffer.concat([size, message]);
}

// The bundle, with the place of each value in it.
function makeBundle() {
  const head = Buffer.concat([padded("#bundle"), Buffer.from([0, 0, 0, 0, 0, 0, 0, 1])]); // at once
  const messages = [...Array(values).keys()].map(messageOf);
  let end = head.length;
  const places = messages.map((message) => (end += message.length) - 4);
  return { bytes: Buffer.concat([head, ...messages]), places };
}

const begun = performance.now();
const trackers = ports.map((port, i) => ({ port, due: begun + (i * period) / ports.length, ...makeBundle() }));

function send({ port, bytes, places }, now) {
  places.forEach((place, i) => bytes.writeFloatBE(Math.sin(now / 1000 + i), place));
  socket.send(Buffer.from(bytes), port, "127.0.0.1");
}

function run() {
  const now = performance.now();
  for (const tracker of trackers)
    for (; tracker.due <= now; tracker.due += period) send(tracker, now);
  setTimeout(run, Math.max(0, Math.min(...trackers.map(({ due }) => due)) - now));
}
run();
