// Shifts, turns and scalings of the plane, as z -> (a + bi) z + (x + yi). Pixels, y down: turns are clockwise.

export const IDENTITY = { a: 1, b: 0, x: 0, y: 0 };

export const shift = (x, y) => ({ a: 1, b: 0, x, y });

export const apply = (s, [x, y]) => [s.a * x - s.b * y + s.x, s.b * x + s.a * y + s.y];

/// First `inner`, then `outer`.
export function compose(outer, inner) {
  const [x, y] = apply(outer, [inner.x, inner.y]);
  return { a: outer.a * inner.a - outer.b * inner.b, b: outer.b * inner.a + outer.a * inner.b, x, y };
}

export function invert(s) {
  const size = s.a * s.a + s.b * s.b;
  const turned = { a: s.a / size, b: -s.b / size, x: 0, y: 0 };
  const [x, y] = apply(turned, [-s.x, -s.y]);
  return { ...turned, x, y };
}

/// Scales and turns about a point, which stays.
export function about([x, y], scale, degrees = 0) {
  const angle = (degrees * Math.PI) / 180;
  const spin = { a: scale * Math.cos(angle), b: scale * Math.sin(angle), x: 0, y: 0 };
  const [movedX, movedY] = apply(spin, [x, y]);
  return { ...spin, x: x - movedX, y: y - movedY };
}

/// That which takes two points to where two fingers have gone.
export function between([p, q], [newP, newQ]) {
  const [dx, dy] = [q[0] - p[0], q[1] - p[1]];
  const [newDx, newDy] = [newQ[0] - newP[0], newQ[1] - newP[1]];
  const size = dx * dx + dy * dy || 1;
  const spin = { a: (newDx * dx + newDy * dy) / size, b: (newDy * dx - newDx * dy) / size, x: 0, y: 0 };
  const [x, y] = apply(spin, p);
  return { ...spin, x: newP[0] - x, y: newP[1] - y };
}

export const scaleOf = (s) => Math.hypot(s.a, s.b);
export const degreesOf = (s) => (Math.atan2(s.b, s.a) * 180) / Math.PI;

/// Nothing that an eye would see.
export const isNothing = (s) =>
  Math.abs(s.x) < 0.5 && Math.abs(s.y) < 0.5 && Math.abs(scaleOf(s) - 1) < 1e-4 && Math.abs(degreesOf(s)) < 0.05;
