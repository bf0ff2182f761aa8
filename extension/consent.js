// Asks the visitor whether a site may have this computer checked.

import { add, byId, showTexts, text } from "./texts.js";

const api = globalThis.browser ?? chrome;
const SHOWN_BEFORE_ALLOW = 700;  // milliseconds: a page cannot make a visitor's second click land on "Allow"

showTexts();
const port = api.runtime.connect({ name: `consent ${location.hash.slice(1)}` });

port.onMessage.addListener(({ origin, product, service, encrypted, areas }) => {
  byId("origin").textContent = origin;
  byId("question").textContent = text("consentQuestion", product);
  for (const { area, names } of areas) {
    add(byId("areas"), "dt", area);
    add(byId("areas"), "dd", names.join("; "));
  }
  byId("transfer").textContent = text(encrypted ? "transferEncrypted" : "transferPlain", service);
  for (const [id, isAllowed] of [["allow", true], ["refuse", false]])
    byId(id).addEventListener("click", () => port.postMessage(isAllowed));
  byId("refuse").focus();
  setTimeout(() => { byId("allow").disabled = false; }, SHOWN_BEFORE_ALLOW);
});

port.onDisconnect.addListener(() => window.close());  // the question is over
