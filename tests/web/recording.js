// recording.js SAMPLES: reads the file that the program SAMPLES records, by its index and with a reader of messages of
// other people's making, and compares each message with what the program printed, bit by bit.
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { withRecording } from "./mcap.js";
import { isSame, readJson, reader } from "./values.js";

const folder = mkdtempSync(join(tmpdir(), "recording-"));
const path = join(folder, "samples.mcap");
let faults = 0;

function fault(...words) {
  console.error(...words);
  faults += 1;
}

// Seconds in a double, as nanoseconds.
function nanoseconds(seconds) {
  const whole = Math.floor(seconds);
  return BigInt(whole) * 1000000000n + BigInt(Math.round((seconds - whole) * 1e9));
}

function compare({ label, type, message: digits, json, stamp }, { message, schema }) {
  const bytes = Buffer.from(message.data);
  if (bytes.toString("hex") !== digits) return fault(`${label}: ${bytes.toString("hex")} instead of ${digits}`);
  const decoded = reader(Buffer.from(schema.data).toString())(bytes);
  if (!isSame(decoded, readJson(json, type))) fault(`${label}: decoded`, decoded, `instead of ${json}`);
  if (message.publishTime !== nanoseconds(stamp)) fault(`${label}: stamp ${message.publishTime} instead of ${stamp}`);
}

try {
  const printed = execFileSync(process.argv[2], [path], { encoding: "utf8", maxBuffer: 1 << 28 });
  const expected = new Map(); // samples by label, in their order
  for (const sample of printed.trim().split("\n").map((line) => JSON.parse(line)))
    expected.set(sample.label, [...(expected.get(sample.label) ?? []), sample]);
  await withRecording(path, async (recording) => {
    for await (const message of recording.readMessages()) {
      const channel = recording.channelsById.get(message.channelId);
      if (channel.topic.startsWith("@")) continue;
      const sample = expected.get(channel.topic)?.shift();
      if (!sample) fault(`${channel.topic} has more messages than were recorded`);
      else compare(sample, { message, schema: recording.schemasById.get(channel.schemaId) });
    }
  });
  if (expected.size !== 40) fault(`${expected.size} types instead of 40`);
  for (const [label, left] of expected) if (left.length > 0) fault(`${label}: ${left.length} messages are missing`);
} finally {
  rmSync(folder, { recursive: true });
}
process.exit(faults === 0 ? 0 : 1);
