// Rows of the table of ./bench, as its other programs write them.
import { appendFileSync } from "node:fs";

const quantile = (sorted, q) => sorted[Math.min(sorted.length - 1, Math.floor(q * sorted.length))];

export class Rows {
  constructor(json, markdown) {
    this.json = json;
    this.markdown = markdown;
  }

  // One row of the samples of a metric; where atMost is given, the median is held against it.
  add(contender, unit, samples, atMost) {
    const sorted = [...samples].sort((a, b) => a - b);
    const median = quantile(sorted, 0.5), min = sorted[0], max = sorted.at(-1);
    const limits = atMost === undefined ? [] : [{ what: unit, found: median, atMost, pass: median <= atMost }];
    const verdict = (short) =>
      limits.map(({ found, pass }) => `${pass ? "pass" : short}: ${found.toPrecision(3)} ${unit}, at most ${atMost}`).join("");
    const column = (number) => number.toFixed(2).padStart(11);
    console.log(`${"page".padEnd(22)} ${contender.padEnd(30)} ${column(median)} ${column(min)} ${column(max)} ${unit.padEnd(4)} ` +
      `${"–".padStart(8)} ${"–".padStart(8)}  ${verdict("SHORT")}`);
    appendFileSync(this.markdown, `| page | ${contender} | ${median.toFixed(2)} ${unit} | ${min.toFixed(2)} to ${max.toFixed(2)} | ` +
      `– | – | ${verdict("**short**")} |\n`);
    appendFileSync(this.json, JSON.stringify(
      { workload: "page", contender, unit, median, min, max, ratio: null, allocations: null, limits }) + "\n");
  }
}
