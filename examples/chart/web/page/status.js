// The line that says what the page is doing, for eyes and for screen readers.
import { Problem } from "./server.js";

const text = document.getElementById("status-text");
const retry = document.getElementById("retry");
const progress = document.getElementById("progress");
const running = new Map();
let again = null;

retry.addEventListener("click", () => again?.());

function show(words, problem, repeat) {
  text.textContent = words;
  text.classList.toggle("problem", problem);
  again = repeat ?? null;
  retry.hidden = !again;
}

export const say = (words) => show(words, false);
export const sayProblem = (words, repeat) => show(words, true, repeat);

/// Says `words` until `work` is done; what is done in a blink is not worth words. A problem is said with a way to try
/// again, and answered with null, as is work that was overtaken.
export async function during(words, work, repeat) {
  const token = {};
  running.set(token, words);
  progress.hidden = false;
  const timer = setTimeout(() => say(`${words} …`), 150);
  try {
    const result = await work;
    clearTimeout(timer);
    running.delete(token);
    const others = [...running.values()];
    say(others.length ? `${others.at(-1)} …` : "Ready");
    return result;
  } catch (failure) {
    if (failure.name === "AbortError") return null;
    sayProblem(`${words} did not work: ${failure instanceof Problem ? failure.message : failure}`, repeat);
    return null;
  } finally {
    clearTimeout(timer);
    running.delete(token);
    progress.hidden = running.size === 0;
  }
}
