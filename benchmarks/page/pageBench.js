// pageBench.js HOST SECONDS ROWS TABLE: a scene of 500 sensors at 60 Hz and its page in Chromium: how soon it shows values,
// whether it counts all of them, and what browser, renderer and server take. What draws on the CPU here, where others have a
// graphics card, is a row of its own and in no limit: the process of the graphics card and the renderer's threads that draw
// tiles. Before that, without a browser: whether the scene leaves frames out because of who looks. Afterwards, for a short
// while, the scene that has a thread for each value.
import { spawn } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import puppeteer from "puppeteer-core";
import { compareFrames, streams } from "./frames.js";
import { processSeconds, threadSeconds } from "./processes.js";
import { Rows } from "./rows.js";
import { sensors, threadedScene, trackedScene } from "./scenes.js";

const [host, asked, json, markdown] = process.argv.slice(2);
const seconds = Number(asked);
const starts = 5, windows = 10;
const tileThreads = "CompositorTileW"; // of 15 characters, as the system keeps names

function startHost(folder, text) {
  writeFileSync(join(folder, "scene.toml"), text);
  const running = spawn(host, ["run", join(folder, "scene.toml"), "--quiet", "--monitor=127.0.0.1:0"],
    { env: { ...process.env, XDG_RUNTIME_DIR: folder }, stdio: ["ignore", "ignore", "pipe"] });
  const said = [];
  return new Promise((resolve, reject) => {
    running.once("exit", () => { reject(new Error(`the host has ended: ${said.join("\n")}`)); });
    createInterface({ input: running.stderr }).on("line", (line) => {
      said.push(line);
      const [, address] = line.match(/monitor: (http:\S+)/) ?? [];
      if (address) resolve({ running, address });
    });
  });
}

const statistics = (page) => page.evaluate(() => ({ ...globalThis.ostrelStatistics }));

// Each time as if the browser had never seen it, in a window that stands: for a new one Chromium loads pages of its own, which
// take as long of a processor. Milliseconds.
async function timeStart(browser, address) {
  const context = await browser.createBrowserContext();
  const page = await context.newPage();
  await wait(2);
  await page.goto(address);
  await page.waitForFunction(() => globalThis.ostrelStatistics?.firstValue != null);
  const { firstValue } = await statistics(page);
  await context.close();
  return firstValue;
}

async function openPage(browser, address) {
  const page = await browser.newPage();
  await page.goto(address);
  await page.waitForFunction((all) => globalThis.ostrelStatistics?.slots >= all, {}, sensors);
  return { page, devTools: await page.createCDPSession() };
}

// Everything that is counted, at one moment.
async function look({ browser, browserTools, page, address, running }) {
  const { processInfo } = await browserTools.send("SystemInfo.getProcessInfo");
  const sum = (pids, secondsOf) => pids.reduce((all, { id }) => all + secondsOf(id), 0);
  const ofKind = (isMeant) => processInfo.filter(({ type }) => isMeant(type));
  const renderers = ofKind((type) => type === "renderer"), drawers = ofKind((type) => type === "GPU");
  const tiles = sum(renderers, (id) => threadSeconds(id, tileThreads));
  const counts = await statistics(page);
  const { edges, time: flowTime } = await (await fetch(new URL("/flow", address))).json();
  const { leftOut } = await (await fetch(new URL("/host", address))).json();
  return {
    time: performance.now() / 1000,
    browser: sum(ofKind((type) => type !== "renderer" && type !== "GPU"), processSeconds),
    renderer: sum(renderers, processSeconds) - tiles,
    drawing: sum(drawers, processSeconds) + tiles,
    server: threadSeconds(running.pid, "monitor"),
    host: processSeconds(running.pid),
    flowTime,
    records: counts.records,
    newest: counts.newest,
    dropped: counts.dropped,
    written: edges.reduce((all, { written }) => all + written, 0),
    leftOut,
  };
}

// In MB, of what is not garbage.
async function heap(devTools) {
  await devTools.send("HeapProfiler.collectGarbage");
  const { usedSize } = await devTools.send("Runtime.getHeapUsage");
  return usedSize / 1e6;
}

const wait = (time) => new Promise((resolve) => { setTimeout(resolve, time * 1000); });

async function measure(setup, seconds) {
  await wait(Math.min(30, seconds / 2)); // plots and caches fill
  const heapBefore = await heap(setup.devTools);
  const looks = [await look(setup)];
  for (let i = 0; i < windows; ++i) {
    await wait(seconds / windows);
    looks.push(await look(setup));
  }
  return { looks, heapGrowth: (await heap(setup.devTools)) - heapBefore };
}

function reportFrames(rows, { alone, looked, server, records, dropped }) {
  const all = (samples) => samples.reduce((sum, one) => sum + one, 0);
  rows.add("frames left out, nobody looks", "", alone);
  rows.add(`frames left out, ${1 + streams} clients`, "", looked, Math.max(...alone));
  rows.add("  all turns, nobody looks", "", [all(alone)]);
  rows.add(`  all turns, ${1 + streams} clients`, "", [all(looked)]);
  rows.add(`server, ${1 + streams} clients`, "%", server);
  rows.add("  records that clients took", "", [records]);
  rows.add("  records that they missed", "", [dropped], 0);
}

const ratesOf = (looks) => (name, scale = 1, clock = "time") =>
  looks.slice(1).map((now, i) => scale * (now[name] - looks[i][name]) / (now[clock] - looks[i][clock]));

// In no limit: no scene has a device for each value.
function reportThreaded(rows, { firstValues, looks }) {
  const perSecond = ratesOf(looks);
  rows.add("500 threads: first value", "ms", firstValues);
  rows.add("500 threads: server", "%", perSecond("server", 100));
  rows.add("500 threads: host as a whole", "%", perSecond("host", 100));
}

// What the page counted, by the times that its records have, is as exact as their times, whenever batches come.
function report(rows, { firstValues, looks, heapGrowth }) {
  const perSecond = ratesOf(looks);
  const both = perSecond("browser", 100).map((percent, i) => percent + perSecond("renderer", 100)[i]);
  const all = (name) => looks.at(-1)[name] - looks[0][name];
  const counted = all("records") / all("newest"), written = all("written") / all("flowTime");
  rows.add("first value after the request", "ms", firstValues, 1000);
  rows.add("values written", "1/s", perSecond("written", 1, "flowTime"));
  rows.add("values counted in the page", "1/s", perSecond("records", 1, "newest"));
  rows.add("values missing in the page", "%", [100 * Math.max(0, 1 - counted / written)], 0.1);
  rows.add("values told as dropped", "", [all("dropped")], 0);
  rows.add("browser and renderer", "%", both, 40);
  rows.add("  of it the renderer", "%", perSecond("renderer", 100));
  rows.add("drawing on the CPU", "%", perSecond("drawing", 100));
  rows.add("server", "%", perSecond("server", 100), 3);
  rows.add("host as a whole", "%", perSecond("host", 100));
  rows.add(`heap growth in ${seconds} s`, "MB", [heapGrowth], 10);
  rows.add("frames left out", "", [all("leftOut")]);
}

// Calls use() with a host that runs the scene.
async function withHost({ text, feed }, use) {
  const folder = mkdtempSync(join(tmpdir(), "page"));
  const { running, address } = await startHost(folder, text);
  const endFeed = feed();
  try {
    await use(running, address);
  } finally {
    endFeed();
    const ended = new Promise((resolve) => { running.once("exit", resolve); });
    running.kill();
    await ended;
    rmSync(folder, { recursive: true });
  }
}

// The page of that host: milliseconds to the first value in five starts, and what is counted in so many seconds.
async function lookWithBrowser(running, address, seconds) {
  const browser = await puppeteer.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader"],
  });
  try {
    const firstValues = [];
    for (let i = 0; i < starts; ++i) firstValues.push(await timeStart(browser, address));
    const browserTools = await browser.target().createCDPSession();
    const setup = { browser, browserTools, address, running, ...(await openPage(browser, address)) };
    return { firstValues, ...(await measure(setup, seconds)) };
  } finally {
    await browser.close();
  }
}

const rows = new Rows(json, markdown);
await withHost(await trackedScene(), async (running, address) => {
  reportFrames(rows, await compareFrames(running, address, Math.min(seconds, 60)));
  report(rows, await lookWithBrowser(running, address, seconds));
});
await withHost(threadedScene(), async (running, address) => {
  reportThreaded(rows, await lookWithBrowser(running, address, Math.min(seconds, 20)));
});
