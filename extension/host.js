// The program on this computer that makes the check: "kel host". It runs as long as its connection is open, and makes one
// check.

const api = globalThis.browser ?? chrome;
const HOST = "example.keldane.check";

// Why a check has no verdict: a reason, which docs/extension.md lists, and the state of the exchange with the service.
export class Failure extends Error {
  constructor(reason, state) {
    super(reason);
    this.reason = reason;
    this.state = state;
  }
}

export class Host {
  constructor() {
    this.port = api.runtime.connectNative(HOST);
    this.hasAnswered = false;
    this.port.onMessage.addListener((message) => this.take(message));
    this.port.onDisconnect.addListener(() => {
      void api.runtime.lastError;  // else the browser reports it as unhandled
      this.end(new Failure(this.hasAnswered ? "host ended" : "no host"));
    });
  }

  take(message) {
    this.hasAnswered = true;
    if (message.type === "progress") this.progress?.(message.area);
    else if (message.type === "error") this.reject?.(new Failure(message.reason, message.state));
    else this.resolve?.(message);
  }

  // The answer to a message, of that type. Rejects with a Failure.
  async ask(message, type, progress) {
    if (this.failure) throw this.failure;
    const answer = await new Promise((resolve, reject) => {
      Object.assign(this, { resolve, reject, progress });
      this.port.postMessage(message);
    });
    if (answer.type !== type) throw new Failure("host ended");
    return answer;
  }

  // Ends the program, also within a check.
  close() {
    this.port.disconnect();
    this.end(new Failure("gone"));
  }

  end(failure) {
    this.failure ??= failure;
    this.reject?.(this.failure);
  }
}
