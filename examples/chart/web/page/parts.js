// Small pieces that panels are built of.

/// An element with properties and children; children that are text are text, never markup.
export function make(tag, properties = {}, ...children) {
  const element = Object.assign(document.createElement(tag), properties);
  element.append(...children);
  return element;
}

export const byId = (id) => document.getElementById(id);

/// Calls once the calls have stopped coming for so long.
export function later(milliseconds, work) {
  let timer = 0;
  return (...values) => {
    clearTimeout(timer);
    timer = setTimeout(() => work(...values), milliseconds);
  };
}
