// What the chart shows. All of it stands in the address behind "#", so that a view can be shared and gone back to.
import { queryOf } from "./server.js";

const dark = matchMedia("(prefers-color-scheme: dark)");
const listeners = [];
let lastPush = -Infinity;

/// What the server has; set once, before anything else is called.
export let about = null;
export let view = null;

function home() {
  return { projection: about.projections[0].name, ...about.home, turn: 0, theme: "system", show: [], hide: [], params: {},
    route: [], speed: 120, dim: 0 };
}

/// An address may have been typed: what does not read is as at home.
function read(hash) {
  const said = new URLSearchParams(hash.replace(/^#/, ""));
  const result = home();
  const number = (name, low, high) => {
    const value = said.get(name)?.trim() ? Number(said.get(name)) : NaN;
    if (value >= low && value <= high) result[name] = value;
  };
  const known = (list, name) => list.some((entry) => (entry.name ?? entry) === name);
  number("lat", -90, 90);
  number("lon", -180, 180);
  number("range", 0, 20000);
  number("turn", -360, 360);
  number("speed", 20, 2000);
  number("dim", 0, 100);
  result.turn = (result.turn + 360) % 360;
  if (known(about.projections, said.get("projection"))) result.projection = said.get("projection");
  if (known(about.themes, said.get("theme"))) result.theme = said.get("theme");
  for (const name of ["show", "hide"])
    result[name] = (said.get(name) ?? "").split(",").filter((layer) => known(about.layers, layer));
  result.route = (said.get("route") ?? "").split(";").map((point) => point.trim()).filter(Boolean).slice(0, 100);
  const names = projectionOf(result).params;
  for (const param of said.getAll("p")) {
    const colon = param.lastIndexOf(":");
    const value = Number(param.slice(colon + 1));
    if (known(names, param.slice(0, colon)) && Number.isFinite(value)) result.params[param.slice(0, colon)] = value;
  }
  return result;
}

export const projectionOf = (of) => about.projections.find(({ name }) => name === of.projection);

const short = (value, digits) => String(Number(value.toFixed(digits)));

/// What the server draws, without size and theme: those are the window's and the system's.
export function drawn(of = view) {
  return {
    projection: of.projection, lat: short(of.lat, 5), lon: short(of.lon, 5),
    range: short(of.range, 3),
    turn: of.turn ? short(of.turn, 2) : undefined,
    show: of.show.join(",") || undefined, hide: of.hide.join(",") || undefined,
    p: Object.entries(of.params).map(([name, value]) => `${name}:${value}`),
    route: of.route.join(";") || undefined, dim: of.route.length && of.dim ? of.dim : undefined,
  };
}

const addressOf = () =>
  "#" + queryOf({ ...drawn(), theme: view.theme === "system" ? undefined : view.theme,
    speed: view.speed === 120 ? undefined : view.speed });

const find = (name) => about.themes.find((theme) => theme.toLowerCase() === name);

/// The theme by its name, the system's wish taken into account.
export const themeName = () =>
  view.theme !== "system" ? view.theme : (dark.matches && find("night")) || find("day") || about.themes[0];

export const isNight = () => themeName().toLowerCase() === "night";

/// `listener(names)` hears which parts of the view have changed.
export const onChange = (listener) => listeners.push(listener);

function tell(names) {
  for (const listener of listeners) listener(names);
}

/// Changes within a second are one step of going back.
export function change(part) {
  const names = Object.keys(part).filter((name) => JSON.stringify(part[name]) !== JSON.stringify(view[name]));
  if (!names.length) return;
  if (names.includes("projection")) part = { params: {}, ...part };
  Object.assign(view, part);
  const now = performance.now();
  history[now - lastPush < 1000 ? "replaceState" : "pushState"](null, "", addressOf());
  lastPush = now;
  tell(names);
}

export function start(what) {
  about = what;
  view = read(location.hash);
  history.replaceState(null, "", addressOf());
  addEventListener("popstate", () => {
    const before = view;
    view = read(location.hash);
    history.replaceState(null, "", addressOf());
    lastPush = -Infinity;
    tell(Object.keys(view).filter((name) => JSON.stringify(view[name]) !== JSON.stringify(before[name])));
  });
  dark.addEventListener("change", () => {
    if (view.theme === "system") tell(["theme"]);
  });
}
