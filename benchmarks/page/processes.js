// CPU time of processes and of their threads, in seconds, as the system counts it.
import { readdirSync, readFileSync } from "node:fs";

const ticksPerSecond = 100; // of Linux, whatever the kernel was built with

// "PID (name) state …": the name may hold blanks and brackets.
const secondsOf = (stat) => {
  const fields = stat.slice(stat.lastIndexOf(")") + 2).split(" ");
  return (Number(fields[11]) + Number(fields[12])) / ticksPerSecond;
};

export const processSeconds = (pid) => secondsOf(readFileSync(`/proc/${pid}/stat`, "utf8"));

// Of the threads whose name begins so.
export function threadSeconds(pid, name) {
  let seconds = 0;
  for (const thread of readdirSync(`/proc/${pid}/task`)) {
    try {
      const folder = `/proc/${pid}/task/${thread}`;
      if (readFileSync(`${folder}/comm`, "utf8").startsWith(name)) seconds += secondsOf(readFileSync(`${folder}/stat`, "utf8"));
    } catch {
      // it has ended meanwhile
    }
  }
  return seconds;
}
