// What the page asks its own server.

/// Why something could not be had, in words for people.
export class Problem extends Error {}

const TRIES = 4;
const BUSY = 503;

const pause = (seconds) => new Promise((done) => { setTimeout(done, seconds * 1000); });

/// Throws a `Problem`, or an `AbortError` when `signal` says that it is overtaken. A busy server is asked again.
export async function get(path, query, signal, tries = TRIES) {
  let answer;
  try {
    answer = await fetch(`${path}?${query}`, { signal });
  } catch (failure) {
    if (failure.name === "AbortError") throw failure;
    throw new Problem("the server does not answer");
  }
  if (answer.status === BUSY && tries > 1) {
    await pause(Math.min(Number(answer.headers.get("Retry-After")) || 1, 5));
    return get(path, query, signal, tries - 1);
  }
  if (answer.ok) return answer;
  const said = await answer.text();
  let problem = said.trim().split("\n")[0];
  try {
    problem = JSON.parse(said).problem ?? problem;
  } catch {
    // A line of text, then.
  }
  throw new Problem(problem.slice(0, 300) || `the server answers ${answer.status}`);
}

export const getJson = async (path, query, signal) => (await get(path, query, signal)).json();
export const getBlob = async (path, query, signal) => (await get(path, query, signal)).blob();

/// Names and values as a query; `undefined` values are left out, arrays are said once for each value. Characters that
/// an address may hold stay legible.
export function queryOf(values) {
  const legible = (text) =>
    encodeURIComponent(text).replace(/%(2C|3B|40|3A)/g, (code) => decodeURIComponent(code));
  return Object.entries(values)
    .flatMap(([name, value]) => [value].flat().map((one) => [name, one]))
    .filter(([, value]) => value !== undefined)
    .map(([name, value]) => `${name}=${legible(String(value))}`)
    .join("&");
}
