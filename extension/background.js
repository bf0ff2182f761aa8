// Takes the questions of pages, asks the visitor, and has the host make the check.

import { Failure, Host } from "./host.js";
import * as sites from "./sites.js";

const api = globalThis.browser ?? chrome;
const PRODUCT = /^[A-Za-z0-9_-]{1,64}$/;
const SESSION = /^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$/i;

const busy = new Set();      // origins with a check under way
const questions = new Map(); // by id: what a consent page shows, and how to answer

// Shows a window with the question. Resolves to whether the visitor agrees; to undefined when the window is closed.
async function askVisitor(question, page) {
  if (page.isGone) return undefined;
  const id = crypto.randomUUID();
  const agreed = new Promise((resolve) => questions.set(id, { question, resolve }));
  page.onDisconnect.addListener(() => questions.get(id)?.resolve(undefined));
  const address = api.runtime.getURL(`consent.html#${id}`);
  const { id: shown } = await api.windows.create({ url: address, type: "popup", width: 560, height: 680 });
  const answer = await agreed;
  questions.delete(id);
  api.windows.remove(shown).catch(() => {});  // it may be closed already
  return answer;
}

// Returns when the visitor or the firm has agreed to have these values read for the site.
async function agree(origin, product, values, isClicked, page) {
  if (await sites.policyFor(origin) === "allowed") return;
  const names = sites.namesOf(values.areas);
  const decision = await sites.decisionFor(origin);
  if (sites.covers(decision, names)) return;
  if (!isClicked) throw new Failure("no click");
  const { service, encrypted, areas } = values;
  const isAllowed = await askVisitor({ origin, product, service, encrypted, areas }, page);
  if (isAllowed === undefined) throw new Failure("closed");
  await sites.remember(origin, isAllowed, [...new Set([...names, ...(isAllowed && decision?.names || [])])]);
  if (!isAllowed) throw new Failure("refused");
}

async function isRefused(origin) {
  const decided = await sites.policyFor(origin);
  if (decided) return decided === "denied";
  return (await sites.decisionFor(origin))?.isAllowed === false;
}

async function makeCheck(page, origin, { product, session, isClicked }) {
  if (!PRODUCT.test(product) || !SESSION.test(session)) throw new Failure("message");
  if (await isRefused(origin)) throw new Failure("refused");
  if (page.isGone) throw new Failure("gone");
  const host = new Host();
  page.onDisconnect.addListener(() => host.close());
  try {
    const values = await host.ask({ type: "ask", product, session }, "values");
    await agree(origin, product, values, isClicked, page);
    const progress = (area) => page.postMessage({ progress: area });
    return (await host.ask({ type: "check" }, "verdict", progress)).verdict;
  } finally {
    host.close();
  }
}

async function answerPage(page, request) {
  page.onDisconnect.addListener(() => { page.isGone = true; });
  const { origin } = new URL(page.sender.url);
  if (busy.has(origin)) {
    page.postMessage({ reason: "busy" });
    return;
  }
  busy.add(origin);
  try {
    page.postMessage({ verdict: await makeCheck(page, origin, request) });
  } catch (error) {
    if (!(error instanceof Failure)) console.error(error);
    page.postMessage({ reason: error.reason ?? "error", state: error.state });
  } finally {
    busy.delete(origin);
  }
}

// The page of a question: it gets what to show, and answers with a boolean or by closing.
function answerConsentPage(port, id) {
  const entry = questions.get(id);
  if (!entry) {  // a page that the browser has restored
    port.disconnect();
    return;
  }
  port.onMessage.addListener((isAllowed) => entry.resolve(isAllowed === true));
  port.onDisconnect.addListener(() => entry.resolve(undefined));
  port.postMessage(entry.question);
}

api.runtime.onConnect.addListener((port) => {
  const isOwnPage = port.sender.url.startsWith(api.runtime.getURL(""));
  if (port.name === "check" && !isOwnPage && port.sender.frameId === 0) {
    let isAsked = false;
    port.onMessage.addListener((request) => {
      if (isAsked) return;  // a port is for one check
      isAsked = true;
      answerPage(port, request).catch(() => {});  // the page may be gone
    });
  } else if (port.name.startsWith("consent ") && isOwnPage) {
    answerConsentPage(port, port.name.slice("consent ".length));
  }
});
