// Values, rates and ages as they are read.

const maxText = 200; // characters of a value
const maxListed = 8; // elements of a sequence

export function numberText(number) {
  if (typeof number !== "number") return "no number"; // JSON has neither NaN nor infinity
  return Number.isInteger(number) ? String(number) : String(Number(number.toPrecision(6)));
}

/** A value as the host writes it in JSON. */
export function valueText(value) {
  if (value === undefined) return "";
  if (typeof value === "string") return value.length > maxText ? `${value.slice(0, maxText)}…` : value;
  if (typeof value === "boolean") return String(value);
  if (Array.isArray(value)) return listText(value);
  if (value !== null && typeof value === "object") return objectText(value);
  return numberText(value);
}

function listText(list) {
  if (list.length <= 4 && list.every((element) => !Array.isArray(element))) return list.map(valueText).join(" ");
  const shown = list.slice(0, maxListed).map((element) => (Array.isArray(element) ? `(${listText(element)})` : valueText(element)));
  return `[${list.length}] ${shown.join(" ")}${list.length > maxListed ? " …" : ""}`;
}

function objectText(object) {
  if ("width" in object && "height" in object) return `${object.width} × ${object.height} ${object.format ?? ""}`;
  return JSON.stringify(object).slice(0, maxText);
}

/** Seconds; undefined for never. */
export function ageText(seconds) {
  if (seconds === undefined || seconds === null) return "never";
  if (seconds < 10) return `${Math.max(seconds, 0).toFixed(1)} s`;
  if (seconds < 120) return `${Math.round(seconds)} s`;
  if (seconds < 7200) return `${Math.round(seconds / 60)} min`;
  return `${Math.round(seconds / 3600)} h`;
}

export function rateText(rate) {
  return `${rate < 10 ? rate.toFixed(1) : Math.round(rate)}/s`;
}

/** A short time as ages at hops are: seconds, in milliseconds. */
export function millisecondsText(seconds) {
  return seconds === null || seconds === undefined ? "–" : `${(seconds * 1000).toFixed(3)} ms`;
}

/** What the host counts: "not stored" for "notStored". */
export function countName(name) {
  return name.replace(/[A-Z]/g, (letter) => ` ${letter.toLowerCase()}`);
}
