// kills.js PROGRAM: has the test PROGRAM kill 200 processes that record, and keep their files; all of those that have a
// whole end by our own reader ("….indexed") must open by their index, and hold as many messages as their names say.
import { execFileSync } from "node:child_process";
import { mkdtempSync, readdirSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { withRecording } from "./mcap.js";

const folder = mkdtempSync(join(tmpdir(), "kills-"));
let opened = 0, torn = 0;
try {
  const env = { ...process.env, OSTREL_KILLS: "200", OSTREL_KEPT_FILES: folder };
  execFileSync(process.argv[2], ["--gtest_filter=*RecordingKill*Small"], { env, stdio: "inherit" });
  for (const name of readdirSync(folder)) {
    const [, messages, state] = name.split(".");
    if (state === "torn") {
      torn += 1;
      continue;
    }
    const found = await withRecording(join(folder, name), async (recording) => {
      let count = 0;
      for await (const _ of recording.readMessages()) count += 1;
      return count;
    });
    if (found !== Number(messages)) throw new Error(`${name} has ${found} messages`);
    opened += 1;
  }
} finally {
  rmSync(folder, { recursive: true });
}
console.log(`${opened} opened by index, ${torn} were cut inside a write`);
process.exit(opened + torn === 200 && opened > torn ? 0 : 1);
