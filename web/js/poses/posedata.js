// Which slots say where something is: X/position, with X/rotation where there is one, or a matrix.

const position = /^(.*)\/position$/;

/**
 * Poses {name, title, position, rotation} or {name, title, matrix}, each of rows. What stands in sensors goes before what comes from devices: a pose
 * whose slots do nothing but feed those of another one is left out.
 */
export function posesOf(rows) {
  const byKey = new Map(rows.map((row) => [`${row.isOut} ${row.label}`, row]));
  const found = [];
  for (const row of rows) {
    const name = position.exec(row.label)?.[1];
    if (/^Matrix4[fd]$/.test(row.type)) found.push({ name: row.label, title: row.title, matrix: row });
    if (name === undefined || !/^Vec3[fd]$/.test(row.type)) continue;
    const turn = byKey.get(`${row.isOut} ${name}/rotation`);
    found.push({ name, title: row.title, position: row, rotation: turn?.type === "Rotation" ? turn : undefined });
  }
  const shown = new Set(found.flatMap((pose) => rowsOf(pose).filter(({ isOut }) => !isOut)).flatMap(({ sources }) => sources));
  return found.filter((pose) => !rowsOf(pose).every((row) => row.isOut && shown.has(row)));
}

export function rowsOf({ matrix, position: place, rotation }) {
  return [matrix, place, rotation].filter((row) => row !== undefined);
}

/** {position: [x, y, z], rotation: quaternion or undefined}; undefined where no value has come, or one that is no place. */
export function placeOf(pose) {
  if (pose.matrix) return placeOfMatrix(pose.matrix.shownValue);
  const place = pose.position.shownValue;
  const turn = pose.rotation?.shownValue;
  if (!isNumbers(place, 3)) return undefined;
  return { position: place, rotation: isNumbers(turn, 4) && Math.hypot(...turn) > 1e-6 ? turn : undefined };
}

const isNumbers = (value, count) => Array.isArray(value) && value.length === count && value.every((one) => typeof one === "number");

/** Of a matrix row by row that does nothing but turn and move. */
function placeOfMatrix(m) {
  if (!isNumbers(m, 16) || m[12] !== 0 || m[13] !== 0 || m[14] !== 0 || m[15] !== 1) return undefined;
  const rows = [m.slice(0, 3), m.slice(4, 7), m.slice(8, 11)];
  const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  const isTurn = rows.every((a, i) => rows.every((b, k) => Math.abs(dot(a, b) - (i === k ? 1 : 0)) < 1e-3));
  return isTurn ? { position: [m[3], m[7], m[11]], turn: rows } : undefined;
}
