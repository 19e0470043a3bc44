// Scenes of 500 sensors at 60 Hz, each with a slot and a value of its own. In the one that stands for devices as they are, ten
// trackers send 50 values each, as one packet a frame: ten threads in the host. In the other each slot has a thread.
import { spawn } from "node:child_process";
import { createSocket } from "node:dgram";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

export const sensors = 500, rate = 60;
const trackers = 10, perTracker = sensors / trackers;
const program = join(dirname(fileURLToPath(import.meta.url)), "trackers.js");
const numbers = (count) => [...Array(count).keys()];

function sceneOf(nodes, labels) {
  const routes = labels.map((label, i) => `["${label}", "Sensor${i}"]`);
  const list = labels.map((_, i) => `[[sensor]]\nname = "sensor${i}"\ntype = "SFFloat"\nlabel = "Sensor${i}"\n`);
  return `[[handler]]\nkind = "Trovio"\nname = "large"\nnodes = [${nodes.join(",\n")}]\nroutes = [${routes.join(",\n")}]\n` +
    list.join("");
}

// Ports that nothing else listens at now.
async function freePorts(count) {
  const sockets = numbers(count).map(() => createSocket("udp4"));
  await Promise.all(sockets.map((socket) => new Promise((resolve) => { socket.bind(0, "127.0.0.1", resolve); })));
  const ports = sockets.map((socket) => socket.address().port);
  sockets.forEach((socket) => socket.close());
  return ports;
}

/** Both have {text, feed()}: the scene file, and what makes values once the host runs; it returns what ends that. */
export async function trackedScene() {
  const ports = await freePorts(trackers);
  const addresses = numbers(perTracker).map((i) => `/${i} Float`).join(", ");
  const nodes = ports.map((port, i) => `["OSC", "listen=127.0.0.1:${port} label=Tracker${i} in='${addresses}'"]`);
  const labels = numbers(sensors).map((i) => `Tracker${Math.floor(i / perTracker)}/${i % perTracker}`);
  const feed = () => {
    const sender = spawn(process.execPath, [program, perTracker, rate, ...ports], { stdio: ["ignore", "ignore", "inherit"] });
    return () => sender.kill();
  };
  return { text: sceneOf(nodes, labels), feed };
}

export function threadedScene() {
  const nodes = numbers(sensors).map((i) => `["Generator", "type=Float rate=${rate} label=Source${i}"]`);
  return { text: sceneOf(nodes, numbers(sensors).map((i) => `Source${i}/value`)), feed: () => () => {} };
}
