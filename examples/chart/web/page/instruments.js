// Scale bar and north arrow, which move with the picture.
import { byId } from "./parts.js";
import { degreesOf, scaleOf } from "./similarity.js";

const WIDEST = 160;  // pixels

/// The longest of 1, 2, 5, 10 ... that fits.
function roundLength(most) {
  const decade = 10 ** Math.floor(Math.log10(most));
  return decade * ([5, 2].find((step) => step * decade <= most) ?? 1);
}

export function showInstruments({ facts, moved }) {
  if (!facts) return;
  const milesPerPixel = facts.nmPerPixel / scaleOf(moved);
  const length = roundLength(milesPerPixel * Math.min(WIDEST, innerWidth / 4));
  byId("scale-bar").style.width = `${length / milesPerPixel}px`;
  byId("scale-text").textContent = `${Number(length.toPrecision(1))} NM`;
  byId("scale").setAttribute("aria-label", `The scale bar is ${Number(length.toPrecision(1))} nautical miles`);
  byId("scale").title = facts.scale ? `${facts.scale} in the middle` : "";
  byId("needle").style.transform = `rotate(${(facts.north ?? 0) + degreesOf(moved)}deg)`;
}
