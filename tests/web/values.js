// What a message says, as the host shows the value: for tests that read messages as others do.
import { parse } from "@foxglove/rosmsg";
import { MessageReader } from "@foxglove/rosmsg2-serialization";

// The name of an image's format in JSON, by its encoding, and its bytes a pixel.
const formats = {
  "": "none", bgr8: "BGR", rgb8: "RGB", bgra8: "BGRA", rgba8: "RGBA", argb8: "ARGB", abgr8: "ABGR",
  "8UC2": "luminance and alpha", mono8: "luminance", mono16: "16-bit luminance", "32FC1": "depth",
};

function imageValue({ width, height, encoding, data }) {
  return { bytes: data.length, format: formats[encoding], height, width };
}

// A message with one field is that field, one with several the list of them.
function plainValue(part) {
  if (typeof part === "bigint" || typeof part !== "object") return part;
  if (Array.isArray(part) || ArrayBuffer.isView(part)) return Array.from(part, plainValue);
  if ("encoding" in part) return imageValue(part);
  const fields = Object.values(part).map(plainValue);
  return fields.length === 1 ? fields[0] : fields;
}

export function reader(schemaText) {
  const messages = new MessageReader(parse(schemaText, { ros2: true }));
  return (bytes) => plainValue(messages.readMessage(bytes));
}

// JSON with its whole numbers read exactly, where the type has any.
export function readJson(text, type) {
  if (!type.startsWith("Long")) return JSON.parse(text);
  const numbers = text.match(/-?\d+/g)?.map(BigInt) ?? [];
  return type.endsWith("[]") ? numbers : numbers[0];
}

// Whether a decoded value is the one in JSON: a float has the digits that tell it from other floats.
export function isSame(decoded, json) {
  if (json === null) return !Number.isFinite(decoded);
  if (typeof json === "number") return Object.is(decoded, json) || Object.is(decoded, Math.fround(json));
  if (typeof json !== "object") return decoded === json;
  const keys = Object.keys(json);
  return typeof decoded === "object" && keys.length === Object.keys(decoded).length &&
    keys.every((key) => isSame(decoded[key], json[key]));
}
