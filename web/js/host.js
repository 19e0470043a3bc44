// Questions to the host that serves this page.

const token = new URLSearchParams(location.search).get("token");
const headers = token ? { Authorization: `Bearer ${token}` } : {};

/** The address of its streams. */
export function streamAddress() {
  const scheme = location.protocol === "https:" ? "wss:" : "ws:";
  return `${scheme}//${location.host}/${token ? `?${new URLSearchParams({ token })}` : ""}`;
}

async function answerTo(path, query) {
  const words = new URLSearchParams(query).toString();
  const answer = await fetch(words ? `${path}?${words}` : path, { headers, cache: "no-store" });
  if (answer.ok) return answer;
  const said = await answer.json().catch(() => ({}));
  throw new Error(said.error ?? `${path} was answered with ${answer.status}`);
}

/** Throws an error with what the host says is wrong, or a TypeError where it does not answer. */
export async function ask(path, query = {}) {
  return (await answerTo(path, query)).json();
}

export async function askText(path, query = {}) {
  return (await answerTo(path, query)).text();
}
