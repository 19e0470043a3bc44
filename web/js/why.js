// Why something flows or does not, in the words of the host.

import { make } from "./dom.js";
import { ask } from "./host.js";

const maxQuestions = 5;

/** The answers to questions {from, to}, as elements. An answer that says more of what is asked stands there once. */
export async function explain(questions) {
  const answers = await Promise.all(questions.slice(0, maxQuestions).map(({ from, to }) => ask("/why", { from, to })));
  const left = questions.length - answers.length;
  return [...answers.map(explanation), ...(left > 0 ? [make("p", { class: "hint" }, `and ${left} more`)] : [])];
}

/** Everything that does not flow; `choose` is called with a label that somebody wants to see. */
export async function explainAll(choose) {
  const answers = await ask("/why");
  if (answers.length === 0) return [make("p", { class: "why", "data-verdict": "flowing" }, "Everything that a route joins flows.")];
  return answers.map((answer) => {
    const element = explanation(answer);
    const label = answer.to || answer.from;
    if (label) element.append(" ", make("button", { onclick: () => choose(label) }, "Show"));
    return element;
  });
}

/** Why nothing comes to this label, of all that does not flow: for slots that no route names. */
export async function explainLonely(label) {
  const answers = await ask("/why");
  return answers.filter(({ from, to }) => from === label || to === label).map(explanation);
}

function explanation({ verdict, text, fits, more }) {
  const element = make("p", { class: "why", "data-verdict": verdict }, text);
  if (fits) element.append(make("br"), fits);
  if (more) element.append(make("br"), `${more} more for the same cause`);
  return element;
}
