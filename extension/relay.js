// Between a page and the extension. What a page sends is checked here and in background.js; the page learns nothing from it
// but the answer.
(() => {
  if (!document.querySelector('meta[name="kel-check"]')) return;

  const api = globalThis.browser ?? chrome;
  const MAX_MESSAGE = 4096;  // characters

  function isShort(message) {
    try {
      return JSON.stringify(message).length <= MAX_MESSAGE;
    } catch {  // a page can send what is not JSON
      return false;
    }
  }

  window.addEventListener("message", (event) => {
    const message = event.data;
    if (event.source !== window || !message || message.kelCheck !== "ask") return;
    const { id, product, session } = message;
    const answer = (content) => window.postMessage({ ...content, kelCheck: "answer", id }, location.origin);
    if (!isShort(message)) {
      answer({ reason: "message" });
      return;
    }
    let port;
    try {
      port = api.runtime.connect({ name: "check" });
    } catch {  // the extension was updated or removed since the page was loaded
      answer({ reason: "gone" });
      return;
    }
    port.onMessage.addListener(answer);
    port.onDisconnect.addListener(() => answer({ reason: "gone" }));  // the page ignores what comes after an answer
    port.postMessage({ product, session, isClicked: navigator.userActivation?.isActive === true });
  });
})();
