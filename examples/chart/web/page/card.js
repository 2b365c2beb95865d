// What lies under a pixel, as a card to read.
import { byId, make } from "./parts.js";
import { addPanel, closePanel, openPanel } from "./panels.js";
import { getJson } from "./server.js";
import { during } from "./status.js";

let control = new AbortController();

function table(record) {
  const rows = record.rows.map(([name, value]) => make("tr", {}, make("th", { scope: "row" }, name), make("td", {}, value)));
  return make("table", { className: "record" }, make("caption", {}, record.type), make("tbody", {}, ...rows));
}

function buttons(point, actions) {
  const route = make("button", { type: "button", className: "to-route" }, "To route");
  const centre = make("button", { type: "button", className: "centre" }, "Centre");
  route.addEventListener("click", () => actions.toRoute(point.text));
  centre.addEventListener("click", () => actions.centre(point));
  return make("p", { className: "buttons" }, route, centre);
}

/// "YYJ@48.7270,-123.4844" and "48.7270,-123.4844" as the server writes them.
export function readPoint(text) {
  const [lat, lon] = text.slice(text.lastIndexOf("@") + 1).split(",").map(Number);
  return { text, lat, lon };
}

const group = (number) => Math.round(number).toLocaleString("en-US");

function facts(answer) {
  const rows = [["Position", answer.place.text]];
  if (answer.elevation_ft !== null && answer.elevation_ft !== undefined)
    rows.push(["Elevation", `${group(answer.elevation_ft)} ft`]);
  if (answer.variation) rows.push(["Variation", answer.variation.text]);
  return make("dl", { className: "facts" }, ...rows.flatMap(([name, value]) => [make("dt", {}, name), make("dd", {}, value)]));
}

function fill(answer, actions) {
  const { lat, lon } = answer.place;
  const here = { text: `${lat.toFixed(5)},${lon.toFixed(5)}`, lat, lon };
  byId("card-title").textContent = answer.found[0]?.text ?? answer.place.text;
  const found = answer.found.map((entry, index) => {
    const content = [...entry.records.map(table), ...(entry.point ? [buttons(readPoint(entry.point), actions)] : [])];
    if (answer.found.length === 1) return make("div", {}, ...content);
    return make("details", { open: index === 0 },
      make("summary", {}, make("span", {}, entry.text), make("small", {}, entry.layer)), ...content);
  });
  byId("card-body").replaceChildren(facts(answer), ...found,
    make("div", { className: "here" }, make("h3", {}, "This position"), buttons(here, actions)));
  byId("card-body").scrollTop = 0;
}

/// What the server finds there; null when there is nothing to say.
export async function pick(query) {
  control.abort();
  control = new AbortController();
  return query && during("Looking there", getJson("/api/pick.json", query, control.signal));
}

/// `actions`: `toRoute(text)`, `centre(point)`, `closed()`.
export function startCard(actions) {
  addPanel("card", null, actions.closed);
  return {
    async show(query) {
      const answer = await pick(query);
      if (!answer) return;
      fill(answer, actions);
      openPanel("card");
    },
    close: () => closePanel("card"),
  };
}
