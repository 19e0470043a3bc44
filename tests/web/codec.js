// codec.js SAMPLES: reads every message that the program SAMPLES prints with a reader of other people's making, by the
// text of its type, and compares it with the JSON beside it.
import { execFileSync } from "node:child_process";
import { isSame, readJson, reader } from "./values.js";

const lines = execFileSync(process.argv[2], { encoding: "utf8", maxBuffer: 1 << 28 }).trim().split("\n");
const types = new Set();
let faults = 0;
for (const line of lines) {
  const { type, schemaName, schema, message, json } = JSON.parse(line);
  types.add(type);
  const decoded = reader(schema)(Buffer.from(message, "hex"));
  if (isSame(decoded, readJson(json, type))) continue;
  console.error(`${type} (${schemaName}): the message ${message} says`, decoded, `the JSON ${json}`);
  faults += 1;
}
if (types.size !== 41) {
  console.error(`${types.size} types instead of 40 and poses`);
  faults += 1;
}
process.exit(faults === 0 ? 0 : 1);
