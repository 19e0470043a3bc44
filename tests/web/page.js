// page.js HOST [FOLDER]: shows the page of a running host in Chromium, as people would, and fails where it does not show what
// happens. With FOLDER the pictures of the documents are made there. Exit status 77 where Chromium or parts of the page are
// missing.
import { Browser, skipped } from "./browsing.js";
import { RunningHost, freePort } from "./running.js";

const [program, folder] = process.argv.slice(2);

// A wand, and a wave whose route is wrong on purpose.
const scene = (wave) => `
[[handler]]
kind = "Trovio"
name = "devices"
nodes = [
  ["Generator", "label=Tracker slot=wand/position type=Vec3f rate=60 frequency=0.3 amplitude='0.6 0.3 0.6' offset='0 1.4 0' phase='0 0.1 0.25'"],
  ["Generator", "label=Turner slot=wand/rotation type=Rotation rate=60 frequency=0.1 amplitude='0.3 1 0 0' offset='0 0 0 0.6'"],
  ["Generator", "label=Wheel slot=angle rate=60 frequency=0.5"],
]
routes = [["Tracker/wand/position", "Wand/position", "OneEuro cutoff=1"], ["Turner/wand/rotation", "Wand/rotation"], ["${wave}", "Wave"]]
[[sensor]]
name = "wand"
type = "SFVec3f"
label = "Wand/position"
[[sensor]]
name = "wand turn"
type = "SFRotation"
label = "Wand/rotation"
[[sensor]]
name = "wave"
type = "SFFloat"
label = "Wave"
`;

// Names that are no markup, however much they look like it.
const oddNames = ['<img src=x onerror="document.title=1">', `"quotes' & \u202e</b>`, "long ".padEnd(1024, "x"), "é 日本"];
const oddScene = oddNames.map((name, i) => `[[sensor]]\nname = ${JSON.stringify(name)}\ntype = "SFFloat"\nlabel = "Odd${i}"\n`).join("") +
  `[[handler]]\nkind = "Trovio"\nname = "<b>"\nnodes = [["Generator", "slot='<i>&amp;'"]]\nroutes = [["Generator/<i>&amp;", "Odd0"]]\n`;

const line = (label) => `.lines .line[data-label="${label}"]`;
const arrow = (to) => `.arrow[data-label="${to}"]`;

async function moves(page) {
  await page.goTo("#chosen=Context/Wand/position");
  await page.looksDifferent("#details canvas", "the plot of the wand among its details");
  await page.says("#details dd", /^label=Tracker slot=wand\/position/);
  if (folder) await page.until(() => document.querySelector("#details [data-points]").dataset.points > 500, "eight seconds of the plot");
  await page.picture("overview");
  await page.changes(`${line("Context/Wand/position")} .value`, "the wand in the table");
  await page.press("2");
  await page.appears(`${arrow("Context/Wave")}[data-kind="broken"]`, "a red arrow where the route is wrong");
  await page.appears(`${arrow("Context/Wand/rotation")}[data-kind="flows"]`, "a black arrow where records flow");
  await page.says(`${arrow("Context/Wand/rotation")} text`, /^\d+\/s$/);
  await page.click(`${arrow("Context/Wave")} path.tip`);
  await page.says("#details .why", /no slot has the label 'Context\/Wheel\/angel'; did you mean 'Context\/Wheel\/angle'\?/);
  await page.picture("graph");
  await page.goTo("#view=plots&plot=Context/Wand/position");
  await page.says(".plot-box [data-points] .u-legend", /x.*y.*z/s);
  await page.looksDifferent(".plot-box canvas", "the plot of the wand");
  await page.press("4");
  await page.changes('.legend [data-label="Context/Wand"] output', "the wand's place among the poses");
  await page.looksDifferent(".poses canvas", "the picture of the poses");
}

async function survives(page, host) {
  await page.goTo("#view=graph&chosen=Context/Wave");
  page.mayFail = true;
  await host.kill();
  await page.says("#notice", /has not answered since/);
  await host.start(scene("Wheel/angle"));
  await page.hides("#notice");
  page.mayFail = false;
  await page.appears(`${arrow("Context/Wave")}[data-kind="flows"]`, "a black arrow for the corrected route");
  await page.appears('#details .why[data-verdict="flowing"]', "that it flows");
  await page.press("1");
  await page.changes(`${line("Context/Wave")} .value`, "the wave");
  await page.back();
  await page.appears("svg.graph", "the view before");
}

async function takesAll(page) {
  const { records, dropped } = await page.evaluate(() => ({ ...ostrelStatistics }));
  page.check(records > 100 && dropped === 0, `records are counted: ${records}, ${dropped} of them missing`);
}

// The name of the file is no text at all.
async function keepsNames(page, host) {
  page.mayFail = true;
  await host.kill();
  await host.start(oddScene, Buffer.from("\xff<b>.toml", "latin1"));
  await page.goTo("#view=table");
  await page.says("#title", /^ostrel-host \ufffd<b>\.toml$/);
  page.mayFail = false;
  for (const [i, name] of oddNames.entries()) {
    const shown = await page.textOf(`${line(`Context/Odd${i}`)} b`);
    page.check(shown === name, `the name '${name}' is shown as '${shown}'`);
  }
  await page.press("2");
  await page.says(".box text", /<i>&amp; : Float/);
}

async function getsBy(page) {
  await page.goTo("#view=table");
  await page.resize(400, 700);
  const width = await page.evaluate(() => document.documentElement.scrollWidth);
  page.check(width <= 400, `the page is ${width} points wide where there are 400`);
  await page.open("#view=poses", () => { HTMLCanvasElement.prototype.getContext = () => null; });
  await page.says(".poses .hint", /need WebGL 2/);
  await page.press("1");
  await page.says(line("Context/Odd0"), /Float/);
  await page.open("#view=plots&plot=Context/Odd0", undefined, /\/parts\//);
  await page.says(".plots .hint", /All else works/);
  await page.open("#view=graph", undefined, /\/js\/graph\//);
  await page.says("#view .hint", /did not come: .*graph\.js/);
  await page.open("#view=table&chosen=Context/Odd0", undefined, /\/js\/details\.js/);
  await page.says("#details .hint", /did not come: .*details\.js/);
}

async function run(browser, host) {
  await host.start(scene("Wheel/angel"));
  const missing = await host.missingParts();
  if (missing) return skipped(missing);
  const page = await browser.page(host.address, folder);
  await page.says("#title", /^ostrel-host/);
  await moves(page);
  await survives(page, host);
  await takesAll(page);
  await keepsNames(page, host);
  await getsBy(page);
  return page.report();
}

const browser = await Browser.launch();
const host = new RunningHost(program, await freePort());
try {
  process.exitCode = await run(browser, host);
} finally {
  await browser.close();
  await host.end();
}
