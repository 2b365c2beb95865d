// Fingers, mouse, wheel and keys over the chart.
import { about, between, compose, shift } from "./similarity.js";

const TAP_PIXELS = 8;
const TURN_DEGREES = 10;  // two fingers that only pinch do not turn
const WHEEL_PAGE = 400;

function turnOf([p, q]) {
  return (Math.atan2(q[1] - p[1], q[0] - p[0]) * 180) / Math.PI;
}

// Two fingers' move without what they turned.
function straight([p, q], [newP, newQ]) {
  const length = (a, b) => Math.hypot(b[0] - a[0], b[1] - a[1]) || 1;
  const middle = (a, b) => [(a[0] + b[0]) / 2, (a[1] + b[1]) / 2];
  const [from, to] = [middle(p, q), middle(newP, newQ)];
  return compose(about(to, length(newP, newQ) / length(p, q)), shift(to[0] - from[0], to[1] - from[1]));
}

/// `tap(point)` hears of clicks, as `ChartMap` counts points.
export function followPointers(element, map, tap) {
  const fingers = new Map();
  let start = null, startTurn = 0, isTap = false, turns = false;
  const pointOf = (event) => {
    const box = element.getBoundingClientRect();
    return map.fromMiddle([event.clientX - box.left, event.clientY - box.top]);
  };

  element.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    element.setPointerCapture(event.pointerId);
    fingers.set(event.pointerId, pointOf(event));
    map.dragging = true;
    isTap = fingers.size === 1;
    start = pointOf(event);
    turns = false;
    if (fingers.size === 2) startTurn = turnOf([...fingers.values()]);
  });

  element.addEventListener("pointermove", (event) => {
    if (!fingers.has(event.pointerId) || fingers.size > 2) return;
    const before = [...fingers.values()];
    const point = pointOf(event);
    if (isTap && Math.hypot(point[0] - start[0], point[1] - start[1]) < TAP_PIXELS) return;
    isTap = false;
    fingers.set(event.pointerId, point);
    const now = [...fingers.values()];
    if (now.length === 1) {
      map.move(shift(now[0][0] - before[0][0], now[0][1] - before[0][1]));
      return;
    }
    const turned = ((turnOf(now) - startTurn + 540) % 360) - 180;
    turns ||= Math.abs(turned) > TURN_DEGREES;
    map.move(turns ? between(before, now) : straight(before, now));
  });

  const up = (event) => {
    if (!fingers.delete(event.pointerId) || fingers.size > 0) return;
    map.dragging = false;
    if (isTap && event.type === "pointerup") tap(start);
    else map.settle();
  };
  element.addEventListener("pointerup", up);
  element.addEventListener("pointercancel", up);

  element.addEventListener("wheel", (event) => {
    event.preventDefault();
    const pixels = event.deltaY * [1, 16, WHEEL_PAGE][event.deltaMode];
    const speed = event.ctrlKey ? 0.01 : 0.002;  // a pinch on a touchpad comes as small steps with the key down
    map.zoom(Math.exp(-Math.max(-WHEEL_PAGE, Math.min(WHEEL_PAGE, pixels)) * speed), pointOf(event));
  }, { passive: false });
}

/// `actions` are what keys do beside moving the chart, by `KeyboardEvent.key`. Keys in a field are the field's, arrows also a
/// list's or a panel's.
export function followKeys(element, map, actions) {
  const arrows = { ArrowLeft: [1, 0], ArrowRight: [-1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };
  document.addEventListener("keydown", (event) => {
    if (event.defaultPrevented || event.ctrlKey || event.altKey || event.metaKey) return;
    const onChart = event.target === element || event.target === document.body;
    if (event.target.matches("input, select, textarea") && event.key !== "Escape") return;
    if (arrows[event.key]) {
      if (!onChart) return;
      const step = Math.min(element.clientWidth, element.clientHeight) / 5;
      map.shift(...arrows[event.key].map((part) => part * step));
    } else if (event.key === "Enter") {
      if (!onChart) return;
      actions.Enter();
    } else if (event.key === "+" || event.key === "=") {
      map.zoom(1.5);
    } else if (event.key === "-") {
      map.zoom(1 / 1.5);
    } else if (event.key === "r" || event.key === "R") {
      map.turn(event.key === "r" ? 15 : -15);
    } else if (actions[event.key]) {
      actions[event.key]();
    } else {
      return;
    }
    event.preventDefault();
  });
}
