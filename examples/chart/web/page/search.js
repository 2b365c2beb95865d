// The search field and what it finds.
import { byId, later, make } from "./parts.js";
import { getJson, queryOf } from "./server.js";
import { during, say } from "./status.js";

const field = byId("search-text");
const list = byId("search-found");
let found = [];
let active = -1;
let control = new AbortController();

function close() {
  list.hidden = true;
  field.setAttribute("aria-expanded", "false");
  field.removeAttribute("aria-activedescendant");
  active = -1;
}

function mark(index) {
  active = index;
  [...list.children].forEach((item, i) => item.setAttribute("aria-selected", String(i === index)));
  if (index < 0) return;
  field.setAttribute("aria-activedescendant", list.children[index].id);
  list.children[index].scrollIntoView({ block: "nearest" });
}

function show(answer, take) {
  found = answer.found;
  const items = found.map((entry, index) => {
    const item = make("li", { id: `found-${index}` }, make("strong", {}, entry.ident || entry.text),
      make("span", {}, entry.name || (entry.ident ? entry.text : "")), make("small", {}, entry.kind ?? ""));
    item.setAttribute("role", "option");
    item.addEventListener("pointerdown", (event) => event.preventDefault());
    item.addEventListener("click", () => take(entry));
    return item;
  });
  const none = make("li", { className: "none" }, answer.problem ?? "Nothing of that name in these data");
  list.replaceChildren(...(items.length ? items : [none]));
  list.hidden = false;
  field.setAttribute("aria-expanded", "true");
  mark(items.length ? 0 : -1);
  say(items.length ? `${items.length} found` : none.textContent);
}

async function search() {
  control.abort();
  control = new AbortController();
  const q = field.value.trim();
  if (!q) return null;
  return during("Searching", getJson("/api/search.json", queryOf({ q }), control.signal));
}

/// What a route's field holds as a point for the address; null with nothing found. `problem` is called with why.
export async function findPoint(text, problem) {
  const answer = await during("Searching", getJson("/api/search.json", queryOf({ q: text })));
  if (answer && !answer.found.length) problem(answer.problem ?? `There is no ${text} in these data`);
  return answer?.found[0]?.point ?? null;
}

/// `go(entry)` is called with what was chosen.
export function startSearch(go) {
  const take = (entry) => {
    close();
    field.value = entry.ident || entry.text;
    field.blur();
    go(entry);
  };
  const lookUp = async () => {
    const answer = await search();
    if (answer && document.activeElement === field) show(answer, take);
  };
  const lookUpLater = later(200, lookUp);
  field.addEventListener("input", () => {
    found = [];
    if (field.value.trim()) lookUpLater();
    else close();
  });
  field.addEventListener("blur", close);
  field.addEventListener("keydown", (event) => {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (step && !list.hidden && found.length) mark((active + step + found.length) % found.length);
    else if (event.key === "Escape" && !list.hidden) close();
    else return;
    event.preventDefault();
  });
  byId("search").addEventListener("submit", async (event) => {
    event.preventDefault();
    if (list.hidden || !found.length) await lookUp();
    if (found.length) take(found[Math.max(active, 0)]);
  });
  return { focus: () => { field.focus(); field.select(); } };
}
