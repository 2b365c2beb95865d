// A tilted perspective has an eye: it stands over the view's position, and what it looks at lies ahead.
import { projectionOf } from "./view.js";

const RADIUS_NM = 3437.74677;
const FEET_A_NM = 6076.11549;
const PITCH = "Pitch", HEADING = "Heading", ALTITUDE = "Altitude (ft)", FIELD = "Field of View Y (degs)";
const STRAIGHT_DOWN = -90;
const rad = (degrees) => (degrees * Math.PI) / 180;
const deg = (radians) => (radians * 180) / Math.PI;
const within = (value, low, high) => Math.min(high, Math.max(low, value));

function param(view, name) {
  return view.params[name] ?? projectionOf(view).params.find((known) => known.name === name)?.value;
}

export const isTilted = (view) => projectionOf(view).tilted && param(view, PITCH) > STRAIGHT_DOWN;

/// A longitude, or a difference of two, from -180 to 180.
export const wrap = (degrees) => ((((degrees + 180) % 360) + 360) % 360) - 180;

/// Where a great circle leads.
export function endPoint({ lat, lon }, course, distance) {
  const [p, c, d] = [rad(lat), rad(course), distance / RADIUS_NM];
  const sine = Math.sin(p) * Math.cos(d) + Math.cos(p) * Math.sin(d) * Math.cos(c);
  const east = Math.atan2(Math.sin(c) * Math.sin(d) * Math.cos(p), Math.cos(d) - Math.sin(p) * sine);
  return { lat: deg(Math.asin(within(sine, -1, 1))), lon: wrap(lon + deg(east)) };
}

/// From one place to another.
export function wayBetween(from, to) {
  const [p, q, d] = [rad(from.lat), rad(to.lat), rad(to.lon - from.lon)];
  const north = Math.cos(p) * Math.sin(q) - Math.sin(p) * Math.cos(q) * Math.cos(d);
  const east = Math.sin(d) * Math.cos(q);
  const along = Math.sin(p) * Math.sin(q) + Math.cos(p) * Math.cos(q) * Math.cos(d);
  return { course: deg(Math.atan2(east, north)), distance: Math.atan2(Math.hypot(north, east), along) * RADIUS_NM };
}

// How far ahead of the eye's foot the middle of its picture lies.
function ahead(view) {
  const up = within(param(view, PITCH), STRAIGHT_DOWN, -10) - STRAIGHT_DOWN;
  return (param(view, ALTITUDE) / FEET_A_NM) * Math.tan(rad(up));
}

/// What of the view changes so that it shows a place in its middle.
export function lookAt(view, place) {
  const { lat, lon } = isTilted(view) ? endPoint(place, param(view, HEADING) + 180, ahead(view)) : place;
  return { lat, lon };
}

/// What of the view changes with a parameter. Tilting keeps what is seen in the middle, and so does an eye that looks
/// straight down again: its scale is the range's.
export function setParam(view, name, value) {
  const params = { ...view.params, [name]: value };
  if (value === undefined) delete params[name];
  const next = { ...view, params };
  if (isTilted(next) === isTilted(view)) return { params };
  const halfField = Math.tan(rad(param(view, FIELD) / 2));
  if (!isTilted(next)) {
    const range = (param(view, ALTITUDE) / FEET_A_NM) * halfField;
    return { params: {}, range, turn: (param(view, HEADING) + 360) % 360,
      ...endPoint(view, param(view, HEADING), ahead(view)) };
  }
  params[ALTITUDE] ??= Math.round(((view.range || 2000) / halfField) * FEET_A_NM);
  params[HEADING] ??= Math.round(view.turn);
  return { params, turn: 0, ...lookAt(next, view) };
}

/// What of a tilted view changes when its picture has been scaled and turned (clockwise) about what is in its middle, and
/// shifted over the ground.
export function moveEye(view, scale, degrees, way) {
  const params = { ...view.params };
  if (Math.abs(scale - 1) > 1e-6) params[ALTITUDE] = Math.round(within(param(view, ALTITUDE) / scale, 1000, 1e9));
  if (Math.abs(degrees) > 0.01)
    params[HEADING] = Math.round(((((param(view, HEADING) - degrees) % 360) + 360) % 360) * 10) / 10;
  const eye = lookAt({ ...view, params }, endPoint(view, param(view, HEADING), ahead(view)));
  return { params, ...(way ? endPoint(eye, way.course, way.distance) : eye) };
}

/// The true course that points up.
export const courseUp = (view) => (isTilted(view) ? (param(view, HEADING) + 360) % 360 : view.turn);

/// What of the view changes so that a true course points up.
export function setCourseUp(view, course) {
  if (!isTilted(view)) return { turn: course };
  const turned = { ...view, params: { ...view.params, [HEADING]: course } };
  return { params: turned.params, ...lookAt(turned, endPoint(view, param(view, HEADING), ahead(view))) };
}
