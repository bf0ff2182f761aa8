// What the visitor and the firm have decided about sites, each named by its origin.

const api = globalThis.browser ?? chrome;
const MAX_SITES = 500;  // decisions that are kept; the oldest are dropped

async function load() {
  return (await api.storage.local.get({ sites: {} })).sites;
}

async function policy() {
  try {
    const { allowedSites = [], deniedSites = [] } = await api.storage.managed.get(["allowedSites", "deniedSites"]);
    return { allowedSites, deniedSites };
  } catch {  // Firefox, where no policy is set
    return { allowedSites: [], deniedSites: [] };
  }
}

// "allowed", "denied", or undefined where the policy leaves the decision to the visitor.
export async function policyFor(origin) {
  const { allowedSites, deniedSites } = await policy();
  if (deniedSites.includes(origin)) return "denied";
  if (allowedSites.includes(origin)) return "allowed";
  return deniedSites.includes("*") ? "denied" : undefined;
}

// The visitor's decision: { isAllowed, names }, with the names of the values that the visitor agreed to; undefined where
// there is none.
export async function decisionFor(origin) {
  return (await load())[origin];
}

// What a visitor agrees to, each value with its area: several areas have a value of the same name.
export function namesOf(areas) {
  return areas.flatMap(({ area, names }) => names.map((name) => `${area}: ${name}`));
}

// Whether a decision allows all these values.
export function covers(decision, names) {
  return decision?.isAllowed === true && names.every((name) => decision.names.includes(name));
}

export async function remember(origin, isAllowed, names) {
  const sites = await load();
  delete sites[origin];
  const kept = Object.entries(sites).sort(([, a], [, b]) => b.time - a.time).slice(0, MAX_SITES - 1);
  await api.storage.local.set({ sites: { ...Object.fromEntries(kept), [origin]: { isAllowed, names, time: Date.now() } } });
}

export async function forget(origin) {
  const sites = await load();
  delete sites[origin];
  await api.storage.local.set({ sites });
}

// All decisions, the newest first: pairs of an origin and a decision.
export async function list() {
  return Object.entries(await load()).sort(([, a], [, b]) => b.time - a.time);
}
