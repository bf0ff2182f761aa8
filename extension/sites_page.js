// The list of the visitor's decisions, each of which can be revoked.

import * as sites from "./sites.js";
import { add, byId, showTexts, text } from "./texts.js";

async function show() {
  const decisions = await sites.list();
  byId("decisions").hidden = decisions.length === 0;
  byId("none").hidden = decisions.length > 0;
  const body = document.querySelector("tbody");
  body.replaceChildren();
  for (const [origin, { isAllowed, names }] of decisions) {
    const row = body.appendChild(document.createElement("tr"));
    add(row, "th", origin).scope = "row";
    add(row, "td", isAllowed ? text("allowed", String(names.length)) : text("refused")).title = isAllowed ? names.join("; ") : "";
    const button = add(row.appendChild(document.createElement("td")), "button", text("forget"));
    button.setAttribute("aria-label", text("forgetSite", origin));
    button.addEventListener("click", () => sites.forget(origin).then(show));
  }
}

showTexts();
show();
