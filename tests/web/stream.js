// stream.js SERVER: subscribes to a slot of each type at the program SERVER with a client of other people's making, under
// both names of its protocol at once, and compares every message, decoded by the text of its type, with the JSON that
// the host shows.
import { spawn } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import protocol from "@foxglove/ws-protocol";
import { WebSocket } from "ws";
import { isSame, readJson, reader } from "./values.js";

// One connection: what came for each slot, by its label.
class Viewer {
  #readers = new Map(); // by subscription
  #arrived = () => {};
  values = new Map();

  constructor(socket, name) {
    this.name = name;
    const ws = new WebSocket(`ws+unix://${socket}:/`, [name]);
    this.client = new protocol.FoxgloveClient({ ws });
    this.client.on("error", (error) => { throw error; });
    this.client.on("status", ({ message }) => {
      if (!message.startsWith("no pose of 'Matrix4")) throw new Error(message);
    });
    this.client.on("advertise", (channels) => channels.forEach((channel) => this.#subscribe(channel)));
    this.client.on("message", ({ subscriptionId, data }) => {
      const { topic, read } = this.#readers.get(subscriptionId);
      this.values.get(topic).push(read(data));
      this.#arrived();
    });
  }

  #subscribe({ id, topic, schema }) {
    this.values.set(topic, []);
    this.#readers.set(this.client.subscribe(id), { topic, read: reader(schema) });
  }

  // Until so many values have come for each label.
  async waitFor(count, labels) {
    while (labels.some((label) => (this.values.get(label)?.length ?? 0) < count))
      await new Promise((resolve) => { this.#arrived = resolve; });
  }
}

const folder = mkdtempSync(join(tmpdir(), "stream"));
const server = spawn(process.argv[2], [folder], { stdio: ["pipe", "pipe", "inherit"] });
const lines = createInterface({ input: server.stdout })[Symbol.asyncIterator]();
const nextLine = async () => (await lines.next()).value;

const socket = await nextLine();
const viewers = ["foxglove.websocket.v1", "foxglove.sdk.v1"].map((name) => new Viewer(socket, name));
let faults = 0, rounds = 0, types = 0;
for (let shown; Object.keys((shown = JSON.parse(await nextLine()))).length > 0; server.stdin.write("\n")) {
  rounds += 1;
  types = Object.keys(shown).length;
  for (const viewer of viewers) {
    await viewer.waitFor(rounds, Object.keys(shown));
    for (const [type, json] of Object.entries(shown)) {
      const values = viewer.values.get(type);
      if (values.length === rounds && isSame(values.at(-1), readJson(json, type))) continue;
      console.error(`${type} under ${viewer.name}: message ${values.length} says`, values.at(-1), `the JSON ${json}`);
      faults += 1;
    }
  }
}
for (const { name, values } of viewers) {
  if (values.get("/tf").length > 0) continue;
  console.error(`no poses came under ${name}`);
  faults += 1;
}
console.log(`${types} types, ${rounds} values of each, ${viewers.length} clients`);
server.stdin.end();
viewers.forEach(({ client }) => client.close());
server.on("exit", (code) => {
  rmSync(folder, { recursive: true });
  process.exit(faults === 0 && types === 40 && code === 0 ? 0 : 1);
});
