// In the page's own world: gives a page that asks for it, by <meta name="kel-check">, the function kelCheck.
(() => {
  if (!document.querySelector('meta[name="kel-check"]')) return;

  const waiting = new Map();  // by id: how to end the page's promise

  window.addEventListener("message", (event) => {
    const message = event.data;
    if (event.source !== window || !message || message.kelCheck !== "answer") return;
    const check = waiting.get(message.id);
    if (!check) return;
    if (message.progress !== undefined) {
      check.progress(message.progress);
      return;
    }
    waiting.delete(message.id);
    if (message.verdict) {
      check.resolve(message.verdict);
    } else {
      const error = new Error(`The check ended without a verdict: ${message.reason}`);
      error.reason = message.reason;
      error.state = message.state;
      check.reject(error);
    }
  });

  // Checks this computer, once the visitor agrees. Resolves to an object with product, session, result, title and
  // requirements, each with result, label and needed. Rejects with an error that has a reason (docs/extension.md).
  // progress: called with the part of the machine that is being read.
  window.kelCheck = (product, session = crypto.randomUUID(), progress = () => {}) =>
    new Promise((resolve, reject) => {
      const id = crypto.randomUUID();
      waiting.set(id, { resolve, reject, progress });
      window.postMessage({ kelCheck: "ask", id, product: String(product), session: String(session) }, location.origin);
    });
  window.dispatchEvent(new Event("kelcheck"));  // the page may be ready before
})();
