// Whether the scene is slowed by who looks: frames that are left out with clients that draw nothing, and without, in turns.
import { spawn } from "node:child_process";
import { dirname, join } from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";
import { threadSeconds } from "./processes.js";

const turns = 5;
export const streams = 7; // beside one that does as the page does
const program = join(dirname(fileURLToPath(import.meta.url)), "clients.js");
const wait = (time) => new Promise((resolve) => { setTimeout(resolve, time * 1000); });

class Clients {
  async start(address) {
    this.process = spawn(process.execPath, [program, address, streams], { stdio: ["pipe", "pipe", "inherit"] });
    this.lines = createInterface({ input: this.process.stdout })[Symbol.asyncIterator]();
    if ((await this.lines.next()).done) throw new Error("the scripted clients have ended");
  }
  async end() {
    this.process.stdin.end();
    const { value } = await this.lines.next();
    return JSON.parse(value);
  }
}

// Of that many seconds: how many frames were left out, and the server's share of a core in per cent.
async function watch(running, address, seconds) {
  const leftOut = async () => (await (await fetch(new URL("/host", address))).json()).leftOut;
  const before = await leftOut(), begun = performance.now(), spent = threadSeconds(running.pid, "monitor");
  await wait(seconds);
  const passed = (performance.now() - begun) / 1000;
  return { leftOut: (await leftOut()) - before, server: 100 * (threadSeconds(running.pid, "monitor") - spent) / passed };
}

/** {alone, looked: the frames left out in each turn, server: its share of a core while somebody looks, records, dropped}. */
export async function compareFrames(running, address, seconds) {
  const found = { alone: [], looked: [], server: [], records: 0, dropped: 0 };
  for (let turn = 0; turn < turns; ++turn) {
    found.alone.push((await watch(running, address, seconds / turns)).leftOut);
    const clients = new Clients();
    await clients.start(address);
    const { leftOut, server } = await watch(running, address, seconds / turns);
    const { records, dropped } = await clients.end();
    found.looked.push(leftOut);
    found.server.push(server);
    found.records += records;
    found.dropped += dropped;
  }
  return found;
}
