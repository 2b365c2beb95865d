// Puts the page together.
import { byId } from "./parts.js";
import { start } from "./view.js";
import { ChartMap } from "./map.js";
import { followKeys, followPointers } from "./gestures.js";
import { closeOne, coveredAbove, coveredBy, isSheet } from "./panels.js";
import { readPoint, startCard } from "./card.js";
import { startSearch } from "./search.js";
import { addAt, addPoint, isAddingByClicks, openRoute, startRoute, stopAdding } from "./route.js";
import { northUp, startSettings } from "./settings.js";
import { showInstruments } from "./instruments.js";
import { getJson } from "./server.js";
import { during, say, sayProblem } from "./status.js";

async function copyAddress() {
  try {
    await navigator.clipboard.writeText(location.href);
    say("The address of this view is copied");
  } catch {
    sayProblem("The browser does not let the page copy: the address is in the address bar");
  }
}

function begin(about) {
  start(about);
  byId("attribution").textContent = about.attribution;
  const element = byId("map");
  const map = new ChartMap();
  map.onMoved(showInstruments);
  startSettings();
  startRoute((places) => map.showAll(places, coveredAbove(), coveredBy("route")));
  const card = startCard({
    toRoute: (text) => { addPoint(text); openRoute(); },
    centre: (point) => map.goTo(point),
    opened: () => { if (isSheet()) map.uncover(coveredBy("card")); },
    closed: () => map.mark(null),
  });
  const look = (point) => {
    if (isAddingByClicks()) return addAt(map.queryAt(point));
    map.mark(point);
    return card.show(map.queryAt(point));
  };
  const search = startSearch((entry) => map.goTo(entry.lat === undefined ? readPoint(entry.point) : entry));
  followPointers(element, map, look);
  followKeys(element, map, {
    "n": northUp, "N": northUp, "/": search.focus, "Enter": () => look([0, 0]),
    "Escape": () => stopAdding() || closeOne() || element.focus(),
  });
  byId("zoom-in").addEventListener("click", () => map.zoom(1.5));
  byId("zoom-out").addEventListener("click", () => map.zoom(1 / 1.5));
  byId("north").addEventListener("click", northUp);
  byId("share").addEventListener("click", copyAddress);
}

async function tryToBegin() {
  const about = await during("Asking what there is to draw", getJson("/api/about.json", ""), tryToBegin);
  if (about) begin(about);
}

tryToBegin();
