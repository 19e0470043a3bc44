// A host that runs a scene, with its page.
import { spawn } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";

export function freePort() {
  return new Promise((resolve) => {
    const server = createServer().listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

/** Always at the same port. */
export class RunningHost {
  #process = null;
  #folder = mkdtempSync(join(tmpdir(), "page"));

  constructor(program, port) {
    this.program = program;
    this.port = port;
    this.address = `http://127.0.0.1:${port}/`;
  }

  /** Runs the text of a scene from a file whose name, in bytes, may be no text; until it answers. */
  async start(scene, name = Buffer.from("scene.toml")) {
    writeFileSync(Buffer.concat([Buffer.from(`${this.#folder}/`), name]), scene);
    const codes = [...name].map((byte) => `\\${byte.toString(8).padStart(3, "0")}`).join("");
    const command = 'cd "$1" && exec "$0" run "$(printf "$2")" --monitor="127.0.0.1:$3" --quiet';
    this.#process = spawn("sh", ["-c", command, this.program, this.#folder, codes, String(this.port)], {
      env: { ...process.env, XDG_RUNTIME_DIR: this.#folder },
      stdio: ["ignore", "pipe", "pipe"],
    });
    await new Promise((resolve, reject) => {
      let said = "";
      for (const stream of [this.#process.stdout, this.#process.stderr])
        stream.on("data", (text) => (said += text).includes(this.address) && resolve());
      this.#process.on("exit", () => reject(new Error(`the host ended: ${said}`)));
    });
  }

  /** As a crash would end it. */
  async kill() {
    if (this.#process?.exitCode !== null || this.#process.signalCode !== null) return;
    const ended = new Promise((resolve) => this.#process.on("exit", resolve));
    this.#process.kill("SIGKILL");
    await ended;
  }

  async end() {
    await this.kill();
    rmSync(this.#folder, { recursive: true });
  }

  /** What is said where parts of the page are missing; undefined where they are there. */
  async missingParts() {
    const answer = await fetch(`${this.address}parts/uplot.js`);
    return answer.ok ? undefined : answer.text();
  }
}
