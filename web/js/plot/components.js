// The numbers that a value consists of, for plots.

const maxComponents = 16;

const names = [
  [/^(Vec\d|Rotation)/, ["x", "y", "z", "w"]],
  [/^Color/, ["r", "g", "b", "a"]],
];

/** Fills `numbers` with them and returns it: empty for texts and pictures; of a sequence, what its first elements have. */
export function numbersOf(value, numbers = []) {
  numbers.length = 0;
  append(value, numbers);
  return numbers;
}

function append(value, numbers) {
  if (numbers.length >= maxComponents) return;
  if (typeof value === "number") numbers.push(value);
  else if (typeof value === "boolean") numbers.push(value ? 1 : 0);
  else if (value === null) numbers.push(NaN);
  else if (Array.isArray(value)) for (const element of value) append(element, numbers);
}

/** Of the components of a slot of that type. */
export function componentNames(type, count) {
  const known = type.endsWith("[]") ? undefined : names.find(([pattern]) => pattern.test(type))?.[1];
  if (count === 1) return ["value"];
  return Array.from({ length: count }, (_, index) => known?.[index] ?? String(index));
}
