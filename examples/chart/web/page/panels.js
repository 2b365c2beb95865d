// Panels that open and close. On a small screen they are sheets, of which one is open at a time.
import { byId } from "./parts.js";

const small = matchMedia("(max-width: 700px), (max-height: 480px)");
const panels = new Map();

/// `button` may be null. `whenClosed` is called however it is closed.
export function addPanel(id, button, whenClosed = () => {}) {
  const element = byId(id);
  panels.set(id, { element, button, whenClosed, from: null });
  element.querySelector(".close").addEventListener("click", () => closePanel(id));
  button?.addEventListener("click", () => (element.hidden ? openPanel(id) : closePanel(id)));
}

export const isOpen = (id) => !panels.get(id).element.hidden;

export function openPanel(id, { focus = true } = {}) {
  for (const other of panels.keys())
    if (other !== id && isOpen(other) && (small.matches || (other !== "route" && id !== "route"))) closePanel(other, false);
  const panel = panels.get(id);
  if (panel.element.hidden) panel.from = document.activeElement;
  panel.element.hidden = false;
  panel.button?.setAttribute("aria-expanded", "true");
  document.body.classList.toggle(`with-${id}`, true);
  if (focus) panel.element.querySelector("h2").focus();
}

/// The focus goes back to where it came from.
export function closePanel(id, focus = true) {
  const panel = panels.get(id);
  if (panel.element.hidden) return;
  const hadFocus = panel.element.contains(document.activeElement);
  panel.element.hidden = true;
  panel.button?.setAttribute("aria-expanded", "false");
  document.body.classList.toggle(`with-${id}`, false);
  if (focus && hadFocus) (panel.from?.isConnected ? panel.from : byId("map")).focus();
  panel.whenClosed();
}

/// Whether panels lie at the window's bottom.
export const isSheet = () => small.matches;

/// How much of the window's bottom a panel there covers; one at the side covers none.
export function coveredBy(id) {
  const box = byId(id).getBoundingClientRect();
  return isOpen(id) && box.width > innerWidth / 2 ? innerHeight - box.top : 0;
}

/// How much of its top there is no sight of the chart.
export const coveredAbove = () => (small.matches ? byId("search").getBoundingClientRect().bottom : 0);

/// The one that was opened last. False when none is open.
export function closeOne() {
  const open = [...panels.keys()].filter(isOpen);
  const id = open.find((one) => panels.get(one).element.contains(document.activeElement)) ?? open[0];
  if (id) closePanel(id);
  return Boolean(id);
}
