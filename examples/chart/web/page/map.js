// The chart under the fingers: a picture that moves at once, and the next one behind it, drawn for where it has gone.
import { IDENTITY, about, apply, compose, degreesOf, invert, isNothing, scaleOf, shift } from "./similarity.js";
import { get, getJson, queryOf } from "./server.js";
import { change, drawn, isNight, onChange, themeName, view } from "./view.js";
import { endPoint, isTilted, lookAt, moveEye, wayBetween, wrap } from "./eye.js";
import { during, say } from "./status.js";

const MARGIN = 0.0625;       // of the window, on each side: what a small shift shows at once; all of it is waited for
const MOST_PIXELS = 9e6;     // of a picture
const MOST_SIDE = 4096;      // that the server draws, before the screen's ratio
const WORLD_NM = 7000;       // ranges beyond show the whole world
const LEAST_NM = 1;
const ROOM = 1.25;           // about what is shown as a whole
const FAR_NM = 300, NEAR_NM = 60;
const DRAWING_NAMES = ["projection", "lat", "lon", "range", "turn", "theme", "show", "hide", "params", "route", "dim"];

// The server says in a header what it has drawn.
async function getPicture(path, query, signal) {
  const answer = await get(path, query, signal);
  const facts = JSON.parse(answer.headers.get("K7-View"));
  return { image: await decode(await answer.blob()), facts };
}

async function decode(blob) {
  const image = new Image();
  image.alt = "";
  image.draggable = false;
  image.className = "picture";
  const url = URL.createObjectURL(blob);
  image.src = url;
  try {
    await image.decode();
  } finally {
    URL.revokeObjectURL(url);
  }
  return image;
}

export class ChartMap {
  #element = document.getElementById("map");
  #marker = document.getElementById("marker");
  #image = null;
  #shown = null;          // what the picture was asked for: {view, query, width, height, inner}
  #facts = null;          // what the server says of it
  #moved = IDENTITY;      // what the fingers did to it, about the window's middle
  #base = null;           // of `#moved`, that which the view already knows
  #markedAt = null;       // of the picture
  #marksNext = false;     // the middle of the next picture
  #control = new AbortController();
  #timer = 0;
  #busy = false;
  #listeners = [];
  dragging = false;

  constructor() {
    onChange((names) => {
      if (names.includes("projection")) this.mark(null);
      if (names.some((name) => DRAWING_NAMES.includes(name))) this.load();
    });
    new ResizeObserver(() => this.#schedule(() => this.load(), 150)).observe(this.#element);
    this.#watchDensity();
  }

  /// Hears `{facts, moved}` whenever the picture has moved or is another.
  onMoved(listener) {
    this.#listeners.push(listener);
  }

  // A window that goes to another screen wants other pictures.
  #watchDensity() {
    matchMedia(`(resolution: ${devicePixelRatio}dppx)`).addEventListener("change", () => {
      this.#watchDensity();
      this.load();
    }, { once: true });
  }

  #schedule(work, delay) {
    clearTimeout(this.#timer);
    this.#timer = setTimeout(work, delay);
  }

  #place() {
    const { a, b, x, y } = this.#moved;
    if (this.#image) this.#image.style.transform = `matrix(${a}, ${b}, ${-b}, ${a}, ${x}, ${y})`;
    this.#marker.hidden = !this.#markedAt;
    if (this.#markedAt) {
      const [markX, markY] = apply(this.#moved, this.#markedAt);
      this.#marker.style.transform = `translate(${markX}px, ${markY}px)`;
    }
    for (const listener of this.#listeners) listener({ facts: this.#facts, moved: this.#moved });
  }

  /// A point of the window, from its upper left corner, seen from its middle.
  fromMiddle([x, y]) {
    return [x - this.#element.clientWidth / 2, y - this.#element.clientHeight / 2];
  }

  /// Moves the picture under the fingers; `settle` then draws what it has come to show.
  move(similarity) {
    this.#moved = compose(similarity, this.#moved);
    this.#place();
    if (this.dragging && !this.#busy && !this.#covers()) this.settle();
  }

  settleSoon(delay) {
    this.#schedule(() => this.settle(), delay);
  }

  zoom(factor, at = [0, 0]) {
    this.move(about(at, factor));
    this.settleSoon(160);
  }

  shift(x, y) {
    this.move(shift(x, y));
    this.settleSoon(120);
  }

  turn(degrees) {
    this.move(about([0, 0], 1, degrees));
    this.settleSoon(160);
  }

  /// Marks a point of the window; null: none.
  mark(point) {
    this.#markedAt = point && apply(invert(this.#moved), point);
    this.#place();
  }

  /// Shows a place in the middle, marked, near enough to be told from others.
  goTo(place) {
    const next = lookAt(view, place);
    if (!isTilted(view) && (view.range === 0 || view.range > FAR_NM)) next.range = NEAR_NM;
    this.#marksNext = true;
    change(next);
    this.load();
  }

  /// Shows places in what is left of the window between what covers it above and below.
  showAll(places, above, below) {
    if (isTilted(view)) return;
    const lats = places.map(({ lat }) => lat), lons = places.map(({ lon }) => places[0].lon + wrap(lon - places[0].lon));
    const middle = { lat: (Math.min(...lats) + Math.max(...lats)) / 2, lon: wrap((Math.min(...lons) + Math.max(...lons)) / 2) };
    const [width, height] = [this.#element.clientWidth, this.#element.clientHeight];
    const [right, up] = [0, 1].map((axis) => Math.max(1, ...places.map((place) => {
      const { course, distance } = wayBetween(middle, place);
      const angle = ((course - view.turn) * Math.PI) / 180;
      return Math.abs(distance * (axis ? Math.cos(angle) : Math.sin(angle)));
    })));
    const milesPerPixel = Math.max(right / width, up / (height - above - below)) * 2 * ROOM;
    change({ range: milesPerPixel * (Math.min(width, height) / 2),
      ...endPoint(middle, view.turn + 180, (milesPerPixel * (below - above)) / 2) });
  }

  /// Moves what is marked out from under a panel at the window's bottom.
  uncover(covered) {
    const free = this.#element.clientHeight - covered;
    const [, y] = this.#markedAt ? apply(this.#moved, this.#markedAt) : [0, 0];
    const beyond = y + this.#element.clientHeight / 2 - (free - 48);
    if (this.#markedAt && beyond > 0) this.shift(0, -Math.max(beyond, free / 4));
  }

  #covers() {
    if (!this.#shown) return true;
    const back = invert(this.#moved);
    const [x, y] = [this.#element.clientWidth / 2, this.#element.clientHeight / 2];
    return [[x, y], [-x, y], [x, -y], [-x, -y]].every((corner) => {
      const [atX, atY] = apply(back, corner);
      return Math.abs(atX) <= this.#shown.width / 2 && Math.abs(atY) <= this.#shown.height / 2;
    });
  }

  /// What asks the server about a point of the window, as it is seen now. Null before the first picture.
  queryAt(point) {
    if (!this.#shown) return null;
    const [x, y] = apply(invert(this.#moved), point);
    const { query, width, height } = this.#shown;
    return `${query}&${queryOf({ x: (x + width / 2).toFixed(1), y: (y + height / 2).toFixed(1) })}`;
  }

  #overtake() {
    clearTimeout(this.#timer);
    this.#control.abort();
    this.#control = new AbortController();
    return this.#control.signal;
  }

  /// Finds out where the picture has been moved to, and makes that the view.
  async settle() {
    const base = this.#moved;
    if (!this.#shown || isNothing(base)) return;
    const signal = this.#overtake();
    this.#busy = true;
    const next = await during("Finding the middle", this.#viewAfter(base, signal), () => this.settle());
    if (signal.aborted) return;
    this.#busy = false;
    if (next === "off") {
      say("The chart ends there");
      this.#moved = IDENTITY;
      this.#place();
    } else if (next) {
      this.#base = base;
      change(next);
      if (this.#base) this.load();  // The view was there already; only the picture has moved.
    }
  }

  async #viewAfter(base, signal) {
    const { view: from, inner } = this.#shown;
    const [scale, degrees] = [scaleOf(base), degreesOf(base)];
    const middle = apply(invert(base), [0, 0]);
    const ask = async (point) => {
      const [x, y] = [point[0] + this.#shown.width / 2, point[1] + this.#shown.height / 2];
      return getJson("/api/at.json", `${this.#shown.query}&${queryOf({ x: x.toFixed(2), y: y.toFixed(2) })}`, signal);
    };
    const isShifted = Math.hypot(...middle) > 0.5;
    if (isTilted(from)) return this.#eyeAfter(from, middle, scale, degrees, isShifted, ask);

    const place = isShifted ? await ask(middle) : from;
    if (place.off) return "off";
    const before = from.range || this.#facts.nmPerPixel * (inner / 2);
    const range = Math.abs(scale - 1) < 1e-6 ? from.range : Math.max(LEAST_NM, before / scale);
    const turn = Math.abs(degrees) < 0.01 ? from.turn : (((from.turn - degrees) % 360) + 360) % 360;
    return { lat: place.lat, lon: place.lon, range: range > WORLD_NM ? 0 : range, turn };
  }

  // Over the horizon there is no ground: the eye goes as far as the lower part of the picture has moved.
  async #eyeAfter(from, middle, scale, degrees, isShifted, ask) {
    if (!isShifted) return moveEye(from, scale, degrees, null);
    for (const y of [0, this.#shown.height * 0.3]) {
      const [old, now] = await Promise.all([ask([0, y]), ask([middle[0], middle[1] + y])]);
      if (!old.off && !now.off) return moveEye(from, scale, degrees, wayBetween(old, now));
    }
    return "off";
  }

  // A flat picture has a margin beyond the window; a tilted eye's or the world's would be another picture.
  #frame() {
    const [inWidth, inHeight] = [this.#element.clientWidth, this.#element.clientHeight];
    const hasMargin = !isTilted(view) && view.range > 0;
    const beyond = (length) => {
      const margin = hasMargin ? Math.round(length * MARGIN) : 0;
      return length + 2 * Math.min(margin, Math.floor((MOST_SIDE - length) / 2));
    };
    const [width, height] = [beyond(inWidth), beyond(inHeight)];
    const inner = Math.min(inWidth, inHeight);
    const ratio = Math.max(1, Math.min(devicePixelRatio, 3, Math.sqrt(MOST_PIXELS / (width * height))));
    const range = view.range * (Math.min(width, height) / inner);
    const query = queryOf({ ...drawn({ ...view, range }), width, height, ratio: Number(ratio.toFixed(2)), theme: themeName() });
    return { view: structuredClone(view), query, width, height, inner, isNight: isNight() };
  }

  /// Draws the view.
  async load() {
    const signal = this.#overtake();
    const base = this.#base ?? this.#moved;
    const isGesture = this.#base !== null;
    this.#base = null;
    const frame = this.#frame();
    if (!(frame.width > 0 && frame.height > 0)) return;
    this.#busy = true;
    const drawing = getPicture("/api/view.png", frame.query, signal);
    const got = await during("Drawing the chart", drawing, () => this.load());
    if (signal.aborted) return;
    this.#busy = false;
    if (got) this.#show(frame, got, base, isGesture);
  }

  #show(frame, { image, facts }, base, isGesture) {
    if (this.#markedAt) this.#markedAt = isGesture && !isTilted(frame.view) ? apply(base, this.#markedAt) : null;
    if (this.#marksNext) this.#markedAt = [0, 0];
    this.#marksNext = false;
    const since = compose(this.#moved, invert(base));
    this.#moved = isNothing(since) ? IDENTITY : since;
    this.#shown = frame;
    this.#facts = facts;
    image.style.width = `${frame.width}px`;
    image.style.height = `${frame.height}px`;
    image.style.left = `${(this.#element.clientWidth - frame.width) / 2}px`;
    image.style.top = `${(this.#element.clientHeight - frame.height) / 2}px`;
    if (this.#image) this.#image.replaceWith(image);
    else this.#element.prepend(image);
    this.#image = image;
    image.classList.toggle("day", !frame.isNight);
    this.#place();
    this.#element.dataset.pictures = Number(this.#element.dataset.pictures ?? 0) + 1;
    if (!this.dragging) this.settleSoon(0);
  }
}
