// Questions to the host that serves this page.

const token = new URLSearchParams(location.search).get("token");
const patience = 10; // seconds
const headers = token ? { Authorization: `Bearer ${token}` } : {};
const ahead = new Map(); // answers by path that were asked for before somebody needs them

/** The address of its streams. */
export function streamAddress() {
  const scheme = location.protocol === "https:" ? "wss:" : "ws:";
  return `${scheme}//${location.host}/${token ? `?${new URLSearchParams({ token })}` : ""}`;
}

async function answerTo(path, query, form) {
  const words = new URLSearchParams(query).toString();
  const answer = await fetch(words ? `${path}?${words}` : path, { headers, cache: "no-store", signal: AbortSignal.timeout(1000 * patience) });
  if (answer.ok) return answer[form]();
  const said = await answer.json().catch(() => ({}));
  throw new Error(said.error ?? `${path} was answered with ${answer.status}`);
}

function tellSilence(error) {
  throw error.name === "TimeoutError" ? new DOMException(`The host has not answered for ${patience} s.`, error.name) : error;
}

/** Throws an error with what the host says is wrong, a TypeError where it is not there, or a TimeoutError where it is silent. */
export function ask(path, query = {}) {
  const answer = ahead.get(path) ?? answerTo(path, query, "json").catch(tellSilence);
  ahead.delete(path);
  return answer;
}

/** Asks now what the next ask() of each path is to answer, which has no query. */
export function askAhead(...paths) {
  for (const path of paths) {
    const answer = ask(path);
    answer.catch(() => {}); // heard of there
    ahead.set(path, answer);
  }
}

export function askText(path, query = {}) {
  return answerTo(path, query, "text").catch(tellSilence);
}
