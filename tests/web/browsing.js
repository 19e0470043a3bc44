// A page in Chromium, and what it must show sooner or later. All waits end after a while, with what was waited for.
import { existsSync } from "node:fs";
import { join } from "node:path";

const chromium = process.env.CHROMIUM ?? "/usr/bin/chromium";
const patience = 20_000; // milliseconds

/** The exit status of a test that cannot run here. */
export function skipped(why) {
  console.log(`skipped: ${why}`);
  return 77;
}

export class Browser {
  static async launch() {
    if (!existsSync(chromium)) process.exit(skipped(`${chromium} is missing; install the package chromium, or name it in CHROMIUM`));
    const { launch } = await import("puppeteer-core");
    const args = ["--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader"];
    return new Browser(await launch({ executablePath: chromium, headless: true, args }));
  }

  constructor(browser) {
    this.browser = browser;
  }

  /** Pictures go into that folder, where one is named. */
  async page(address, folder) {
    const page = new Page(this.browser, address, folder);
    await page.open("");
    return page;
  }

  close() {
    return this.browser.close();
  }
}

export class Page {
  mayFail = false; // while the host is gone, browsers report requests that fail
  #faults = 0;

  constructor(browser, address, folder) {
    this.browser = browser;
    this.address = address;
    this.folder = folder;
  }

  /** Opens the address anew; `script` runs before those of the page, and requests like `missing` are answered with 404. */
  async open(hash, script, missing) {
    await this.page?.close();
    this.page = await this.browser.newPage();
    this.page.setDefaultTimeout(patience);
    this.page.on("pageerror", (error) => this.check(false, error.stack ?? error.message));
    this.page.on("console", (message) => {
      const isWanted = missing?.test(message.location()?.url ?? "");
      this.check(message.type() !== "error" || this.mayFail || isWanted, `the console says: ${message.text()}`);
    });
    this.page.on("request", (request) => this.#ask(request, missing));
    await this.page.setRequestInterception(missing !== undefined);
    if (script) await this.page.evaluateOnNewDocument(script);
    await this.resize(1200, 700);
    await this.page.goto(this.address + hash);
  }

  #ask(request, missing) {
    const url = request.url();
    this.check(url.startsWith(this.address) || url.startsWith("data:"), `the page asks another host: ${url}`);
    if (missing?.test(url)) request.respond({ status: 404, contentType: "text/plain", body: "It is not there." });
    else if (missing) request.continue();
  }

  check(isRight, text) {
    if (isRight) return;
    console.error(text);
    this.#faults += 1;
  }

  /** The exit status. */
  report() {
    return this.#faults === 0 ? 0 : 1;
  }

  evaluate(...words) {
    return this.page.evaluate(...words);
  }
  press(key) {
    return this.page.keyboard.press(key);
  }
  resize(width, height) {
    return this.page.setViewport({ width, height });
  }
  back() {
    return this.page.goBack();
  }
  async goTo(hash) {
    await this.page.evaluate((text) => (location.hash = text), hash);
  }

  async click(selector) {
    await (await this.page.waitForSelector(selector)).click();
  }
  textOf(selector) {
    return this.page.waitForSelector(selector).then((element) => element.evaluate(({ textContent }) => textContent));
  }
  appears(selector, what) {
    return this.#until(() => this.page.waitForSelector(selector), what ?? selector);
  }
  hides(selector) {
    return this.#until(() => this.page.waitForSelector(selector, { hidden: true }), `no ${selector}`);
  }

  until(condition, what) {
    return this.#until(() => this.page.waitForFunction(condition), what);
  }

  /** Some element like that has such a text. */
  says(selector, pattern) {
    const isSaid = (where, source, flags) => [...document.querySelectorAll(where)].some(({ textContent, hidden }) => !hidden && new RegExp(source, flags).test(textContent));
    return this.#until(() => this.page.waitForFunction(isSaid, {}, selector, pattern.source, pattern.flags), `${selector} saying ${pattern}`);
  }

  async changes(selector, what) {
    const before = await this.textOf(selector);
    const isOther = (where, text) => document.querySelector(where)?.textContent !== text;
    await this.#until(() => this.page.waitForFunction(isOther, {}, selector, before), `${what}, other than '${before}'`);
  }

  async looksDifferent(selector, what) {
    const element = await this.page.waitForSelector(selector);
    const before = await element.screenshot({ encoding: "base64" });
    for (let i = 0; i < 50; i += 1) if ((await element.screenshot({ encoding: "base64" })) !== before) return;
    throw new Error(`${what} does not change`);
  }

  async #until(wait, what) {
    await wait().catch((error) => {
      throw new Error(`the page does not show ${what}: ${error.message}`);
    });
  }

  async picture(name) {
    if (this.folder) await this.page.screenshot({ path: join(this.folder, `${name}.png`) });
  }
}
