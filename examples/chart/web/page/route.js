// The route: its points, the table of its legs and the ground under it.
import { byId, later, make } from "./parts.js";
import { addPanel, isOpen, openPanel } from "./panels.js";
import { nearestPoint, pick } from "./card.js";
import { findPoint } from "./search.js";
import { getBlob, getJson, queryOf } from "./server.js";
import { during } from "./status.js";
import { change, onChange, themeName, view } from "./view.js";
import { setCourseUp } from "./eye.js";

const panel = byId("route");
const body = panel.querySelector("tbody");
const profile = byId("profile");
let control = new AbortController();
let places = [];
let showAll = () => {};
let found = null;  // over the airways: its points alone would not say which
let legs = [];
let leg = 0;

const bearing = (degrees) =>
  degrees === null || degrees === undefined ? "" : `${String(Math.round(degrees) % 360 || 360).padStart(3, "0")}°`;
const miles = (value) => (Math.round(value * 10 + 1e-6) / 10).toFixed(1);  // 146.35 is 146.4, as on paper

function sayProblem(words) {
  byId("route-problem").textContent = words;
  byId("route-problem").hidden = !words;
}

function trackUp(index) {
  leg = index;
  if (legs[leg]) change(setCourseUp(view, legs[leg].course_true));
}

function row(each, index) {
  const up = make("button", { type: "button", className: "leg" }, String(index + 1));
  up.setAttribute("aria-label", `Leg ${index + 1}: its track up`);
  up.title = "This leg's track up";
  up.addEventListener("click", () => trackUp(index));
  const cells = [each.from, each.to, each.airway ?? "", bearing(each.course_true), bearing(each.course_mag),
    miles(each.distance_nm), miles(each.total_nm), each.time ?? ""];
  return make("tr", {}, make("td", {}, up), ...cells.map((text) => make("td", {}, text)));
}

function showTable(answer) {
  legs = answer?.legs ?? [];
  places = answer?.points ?? [];
  leg = Math.min(leg, Math.max(legs.length - 1, 0));
  body.replaceChildren(...legs.map(row));
  body.parentElement.hidden = !legs.length;
  body.parentElement.classList.toggle("direct", legs.every(({ airway }) => !airway));
  byId("route-all").disabled = !places.length;
  byId("route-sum").textContent = legs.length ? `${answer.from} to ${answer.to}, ${miles(answer.distance_nm)} NM` : "";
  byId("track-up").disabled = !legs.length;
}

async function showProfile(signal) {
  // Without the panel there is no width to draw for; it is drawn when the panel opens.
  if (panel.hidden) return;
  const width = Math.round(Math.min(Math.max(profile.parentElement.clientWidth - 24, 280), 1100));
  const wide = getComputedStyle(panel).getPropertyValue("--profile-width");
  const query = queryOf({ route: view.route.join(";"), width: wide ? Math.round(panel.clientWidth * Number(wide)) : width,
    height: 220, theme: themeName() });
  const blob = await during("Drawing the profile", getBlob("/api/profile.svg", query, signal));
  if (!blob || signal.aborted) return;
  const old = profile.src;
  profile.src = URL.createObjectURL(blob);
  profile.hidden = false;
  if (old) URL.revokeObjectURL(old);
}

async function refresh() {
  control.abort();
  control = new AbortController();
  const { signal } = control;
  const { route } = view;
  byId("route-undo").disabled = byId("route-clear").disabled = !route.length;
  byId("route-find").disabled = route.length < 2;
  byId("dim-row").hidden = !route.length;
  byId("route-hint").hidden = route.length > 1;
  byId("route-hint").textContent = route.length
    ? `From ${route[0].split("@")[0]}: click or type the next point.`
    : "Click fixes on the chart one after the other, or type them here.";
  sayProblem("");
  if (route.length < 2) {
    showTable(null);
    profile.hidden = true;
    return;
  }
  const text = route.join(";");
  const isFound = found?.route === text && found.speed === view.speed;
  const asked = isFound ? found : getJson("/api/route.json", queryOf({ route: text, speed: view.speed }), signal);
  const answer = await during("Measuring the route", asked);
  if (signal.aborted) return;
  showTable(answer);
  await showProfile(signal);
}

export function addPoint(text) {
  if (view.route.at(-1) !== text) change({ route: [...view.route, text] });
}

/// What is found there, or else the place itself.
export async function addAt(query) {
  const answer = await pick(query);
  if (answer) addPoint(nearestPoint(answer)?.point ?? answer.point);
}

async function findWay() {
  const [from, to] = [view.route[0], view.route.at(-1)];
  const asked = getJson("/api/find.json", queryOf({ from, to, speed: view.speed }));
  const answer = await during("Finding a way over the airways", asked.catch((failure) => {
    sayProblem(`There is no way by airways: ${failure.message}`);
    throw failure;
  }));
  if (!answer?.route) return;
  found = answer;
  change({ route: answer.route.split(";") });
  if (answer.points) showAll(answer.points);
}

const clicks = byId("route-click");
export const isAddingByClicks = () => isOpen("route") && clicks.getAttribute("aria-pressed") === "true";

export function stopAdding() {
  const was = isAddingByClicks();
  setAdding(false);
  return was;
}

function setAdding(on) {
  clicks.setAttribute("aria-pressed", String(on));
  document.body.classList.toggle("adding", on);
}

export const openRoute = () => openPanel("route", { focus: false });

/// "48.7270,-123.4844" stays as it is typed; anything else is looked up.
async function addTyped(event) {
  event.preventDefault();
  const field = byId("route-text");
  const text = field.value.trim();
  if (!text) return;
  sayProblem("");
  const point = await findPoint(text, sayProblem);
  if (!point) return;
  field.value = "";
  addPoint(point);
}

/// `show(places)` shows all of them.
export function startRoute(show) {
  showAll = show;
  addPanel("route", byId("open-route"), () => setAdding(false));
  byId("open-route").addEventListener("click", () => {
    if (!isOpen("route")) return;
    if (!view.route.length) setAdding(true);
    refresh();
  });
  clicks.addEventListener("click", () => setAdding(!isAddingByClicks()));
  byId("route-add").addEventListener("submit", addTyped);
  byId("route-find").addEventListener("click", findWay);
  byId("route-undo").addEventListener("click", () => change({ route: view.route.slice(0, -1) }));
  byId("route-clear").addEventListener("click", () => change({ route: [] }));
  byId("route-speed").addEventListener("change", ({ target }) => {
    if (target.validity.valid && target.value) change({ speed: Number(target.value) });
  });
  byId("route-all").addEventListener("click", () => showAll(places));
  byId("track-up").addEventListener("click", () => trackUp(leg));
  new ResizeObserver(later(250, () => view.route.length > 1 && showProfile(control.signal))).observe(panel);
  const sync = () => { byId("route-speed").value = view.speed; };
  onChange((names) => {
    sync();
    if (names.includes("route") || names.includes("speed")) {
      if (view.route.length) openRoute();
      refresh();
    } else if (names.includes("theme") && view.route.length > 1) {
      showProfile(control.signal);
    }
  });
  sync();
  if (view.route.length) openRoute();
  refresh();
}

