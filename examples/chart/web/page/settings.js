// The panel of what is drawn and how.
import { byId, make } from "./parts.js";
import { addPanel } from "./panels.js";
import { about, change, isNight, onChange, projectionOf, view } from "./view.js";
import { courseUp, isTilted, setCourseUp, setParam } from "./eye.js";

const capital = (text) => text.charAt(0).toUpperCase() + text.slice(1);

function choice(type, name, value, text, chosen) {
  const input = make("input", { type, name, value });
  input.addEventListener("change", () => chosen(input));
  return make("label", { className: "choice" }, input, make("span", {}, text));
}

function toggleLayer({ name, visible }, on) {
  const without = (names) => names.filter((other) => other !== name);
  const [show, hide] = [without(view.show), without(view.hide)];
  if (on && !visible) show.push(name);
  if (!on && visible) hide.push(name);
  change({ show, hide });
}

const isOn = ({ name, visible }) => (visible || view.show.includes(name)) && !view.hide.includes(name);

// What matters only to an eye that looks ahead is not asked while it looks down.
function showParams() {
  const { params, laid } = projectionOf(view);
  const asked = params.filter(({ name }) => !projectionOf(view).tilted || isTilted(view) || name === "Pitch");
  const rows = asked.map(({ name, value, range }) => {
    const set = view.params[name];
    const input = make("input", { type: "number", step: "any", value: set ?? "", title: range,
      placeholder: laid ? "automatic" : String(Math.round(value)) });
    input.dataset.param = name;
    input.addEventListener("change", () => {
      if (input.validity.valid) change(setParam(view, name, input.value === "" ? undefined : Number(input.value)));
    });
    return make("label", { className: "row" }, name, input);
  });
  byId("params").replaceChildren(...rows);
}

function sync(names) {
  byId("projection").value = view.projection;
  const focused = document.activeElement?.dataset?.param;
  if (!names || names.includes("params") || names.includes("projection")) {
    showParams();
    if (focused) [...byId("params").querySelectorAll("input")].find(({ dataset }) => dataset.param === focused)?.focus();
  }
  for (const input of byId("themes").querySelectorAll("input")) input.checked = input.value === view.theme;
  [...byId("layers").querySelectorAll("input")].forEach((input, index) => { input.checked = isOn(about.layers[index]); });
  const course = Math.round(courseUp(view)) % 360;
  byId("turn").value = course;
  byId("turn-text").textContent = `${String(course).padStart(3, "0")}°`;
  byId("dim").value = view.dim;
  document.documentElement.dataset.light = isNight() ? "night" : "day";
}

export const northUp = () => change(setCourseUp(view, 0));

export function startSettings() {
  addPanel("settings", byId("open-settings"));
  byId("projection").replaceChildren(...about.projections.map(({ name, title }) => make("option", { value: name }, title)));
  byId("projection").addEventListener("change", ({ target }) => change({ projection: target.value }));
  byId("themes").replaceChildren(...["system", ...about.themes].map((name) =>
    choice("radio", "theme", name, capital(name), () => change({ theme: name }))));
  byId("layers").replaceChildren(...about.layers.map((layer) =>
    choice("checkbox", "layer", layer.name, layer.title ?? capital(layer.name), (input) => toggleLayer(layer, input.checked))));
  byId("turn").addEventListener("input", ({ target }) => { byId("turn-text").textContent = `${target.value.padStart(3, "0")}°`; });
  byId("turn").addEventListener("change", ({ target }) => change(setCourseUp(view, Number(target.value))));
  byId("dim").addEventListener("change", ({ target }) => change({ dim: Number(target.value) }));
  byId("north-up").addEventListener("click", northUp);
  onChange(sync);
  sync(null);
}
