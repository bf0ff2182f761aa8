// The texts of the extension's own pages, in the browser's language, and elements that hold texts. No text becomes markup.

const api = globalThis.browser ?? chrome;

export function text(name, ...values) {
  return api.i18n.getMessage(name, values);
}

export function byId(id) {
  return document.getElementById(id);
}

export function add(parent, kind, content) {
  const element = parent.appendChild(document.createElement(kind));
  element.textContent = content;
  return element;
}

// Fills the elements that name a text.
export function showTexts() {
  document.documentElement.lang = text("@@ui_locale").replace("_", "-");
  for (const element of document.querySelectorAll("[data-text]")) element.textContent = text(element.dataset.text);
}
