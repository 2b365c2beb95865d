// What lies under a pixel, as a card to read.
import { byId, make } from "./parts.js";
import { addPanel, closePanel, openPanel } from "./panels.js";
import { wayBetween } from "./eye.js";
import { getJson } from "./server.js";
import { during } from "./status.js";

let control = new AbortController();

const isGround = ({ layer }) => /(^|_)(land|lakes|sea|terrain)$/.test(layer);

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
  if (Number.isFinite(answer.elevation_ft)) rows.push(["Ground", `${group(answer.elevation_ft)} ft`]);
  if (answer.variation) rows.push(["Variation", answer.variation.text.replace(/^variation /, "")]);
  return make("dl", { className: "facts" }, ...rows.flatMap(([name, value]) => [make("dt", {}, name), make("dd", {}, value)]));
}

const contents = (entry, actions) =>
  [...entry.records.map(table), ...(entry.point ? [buttons(readPoint(entry.point), actions)] : [])];

function folded(entry, actions) {
  return make("details", {}, make("summary", {}, make("span", {}, entry.text), make("small", {}, entry.layer)),
    ...contents(entry, actions));
}

/// Of what is found the point that is nearest to the place: symbols crowd.
export function nearestPoint({ place, found }) {
  const away = ({ point }) => wayBetween(place, readPoint(point)).distance;
  return found.filter(({ point }) => point).sort((a, b) => away(a) - away(b))[0];
}

// A point, or else what is uppermost, is the card's subject, unless it is but the ground.
function fill(answer, actions) {
  const { place, found } = answer;
  const here = { text: answer.point, lat: place.lat, lon: place.lon };
  const subject = nearestPoint(answer) ?? found.find((entry) => !isGround(entry));
  const others = found.filter((entry) => entry !== subject);
  byId("card-title").textContent = subject?.text ?? place.text;
  byId("card-body").replaceChildren(facts(answer), ...(subject ? contents(subject, actions) : []),
    make("div", { className: "here" }, make("h3", {}, "This position"), buttons(here, actions)),
    ...(others.length ? [make("div", {}, make("h3", {}, "Also here"), ...others.map((entry) => folded(entry, actions)))] : []));
  byId("card-body").scrollTop = 0;
}

/// What the server finds there; null when there is nothing to say.
export async function pick(query) {
  control.abort();
  control = new AbortController();
  return query && during("Looking there", getJson("/api/pick.json", query, control.signal));
}

/// `actions`: `toRoute(text)`, `centre(point)`, `opened()`, `closed()`.
export function startCard(actions) {
  addPanel("card", null, actions.closed);
  return {
    async show(query) {
      const answer = await pick(query);
      if (!answer) return;
      fill(answer, actions);
      openPanel("card");
      actions.opened();
    },
    close: () => closePanel("card"),
  };
}
