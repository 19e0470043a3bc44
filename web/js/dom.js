// Elements of the page. Whatever comes from outside becomes a text node or an attribute, never markup.

/** An element with attributes and listeners ("onclick": a function); children are elements or texts. */
export function make(tag, settings = {}, ...children) {
  return fill(document.createElement(tag), settings, children);
}

/** The same for pictures. */
export function makeSvg(tag, settings = {}, ...children) {
  return fill(document.createElementNS("http://www.w3.org/2000/svg", tag), settings, children);
}

function fill(element, settings, children) {
  for (const [name, value] of Object.entries(settings)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (value === true) element.setAttribute(name, "");
    else if (value !== false && value !== undefined) element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

/** Writes a text only where it is another one, so that nothing is laid out for nothing. */
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

/** The colour that the style sheet has under that name now. */
export function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}
