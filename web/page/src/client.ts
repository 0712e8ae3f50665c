// The client of the worker: requests and calls with promises, notices of the server, and the end of a
// worker that takes too long.

import type { ContentChange, ServerDiagnostic } from "./protocol";
import { scriptAt } from "./scripts";
import type { Calls, Order, Report } from "./messages";

export const SOURCE_URI = "file:///source.szirpa";

// After so long people see that they wait, and later the worker is ended.
const PATIENCE_MS = 400;
const LIMIT_MS = 20_000;

export type State = "ready" | "busy" | "stopped";

export interface Owner {
  diagnose(diagnostics: ServerDiagnostic[], version: number): void;
  show(state: State, reason: string): void;
  // What a new worker has to know.
  text(): string;
  settings(): object;
}

interface Waiting {
  resolve(result: any): void;
  reject(reason: Error): void;
}

export class Client {
  private worker: Worker | undefined;
  private readonly requests = new Map<number, Waiting>();
  private readonly calls = new Map<number, Waiting>();
  private lastId = 0;
  private version = 0;
  private diagnosed = 0;
  private timer: ReturnType<typeof setTimeout> | undefined;

  constructor(private readonly owner: Owner) {}

  // ---- The worker's life ----

  start(): void {
    this.worker = new Worker(scriptAt("engine.js"), { type: "module" });
    this.worker.onmessage = ({ data }: MessageEvent<Report>) => this.take(data);
    this.worker.onerror = (event) => this.stop(event.message || "The assembler can't be loaded.");
    const capabilities = { textDocument: { publishDiagnostics: { versionSupport: true } } };
    this.request("initialize", {
      capabilities,
      initializationOptions: this.owner.settings(),
    }).catch(() => undefined);
    this.notify("initialized", {});
    this.notify("textDocument/didOpen", {
      textDocument: {
        uri: SOURCE_URI, languageId: "szirpa", version: ++this.version, text: this.owner.text(),
      },
    });
    this.watch();
  }

  stop(reason: string): void {
    this.worker?.terminate();
    this.worker = undefined;
    this.diagnosed = this.version;
    clearTimeout(this.timer);
    this.timer = undefined;
    for (const waiting of [this.requests, this.calls]) {
      waiting.forEach((each) => each.reject(new Error(reason)));
      waiting.clear();
    }
    this.owner.show("stopped", reason);
  }

  get isRunning(): boolean {
    return this.worker !== undefined;
  }

  private get isBusy(): boolean {
    return this.requests.size + this.calls.size > 0 || this.diagnosed < this.version;
  }

  private watch(): void {
    if (this.timer === undefined && this.isBusy) {
      this.timer = setTimeout(() => {
        this.owner.show("busy", "");
        this.timer = setTimeout(
          () => this.stop(`Stopped: it has taken longer than ${LIMIT_MS / 1000} seconds.`),
          LIMIT_MS - PATIENCE_MS,
        );
      }, PATIENCE_MS);
    }
  }

  // Whoever waits for something is waiting anew when anything has come.
  private relax(): void {
    clearTimeout(this.timer);
    this.timer = undefined;
    if (!this.isBusy) {
      this.owner.show("ready", "");
    }
    this.watch();
  }

  // ---- Messages ----

  private post(order: Order): void {
    this.worker?.postMessage(order);
  }

  private take(report: Report): void {
    if ("failed" in report) {
      this.stop(`Stopped: ${report.failed}`);
      return;
    }
    if ("lsp" in report) {
      this.hear(report.lsp);
    } else {
      this.settle(this.calls, report.call, report);
    }
    this.relax();
  }

  private hear(message: any): void {
    if (message.method === "textDocument/publishDiagnostics") {
      this.diagnosed = message.params.version ?? this.version;
      this.owner.diagnose(message.params.diagnostics, this.diagnosed);
    } else if (message.method === undefined) {
      this.settle(this.requests, message.id, message);
    } else if (message.id !== undefined) {
      this.post({ lsp: { jsonrpc: "2.0", id: message.id, result: null } });
    }
  }

  private settle(all: Map<number, Waiting>, id: number, answer: any): void {
    const waiting = all.get(id);
    all.delete(id);
    const refusal = answer.error?.message ?? answer.refused;
    if (refusal !== undefined) {
      waiting?.reject(new Error(refusal));
    } else {
      waiting?.resolve(answer.result);
    }
  }

  private wait<Result>(all: Map<number, Waiting>, id: number): Promise<Result> {
    return new Promise<Result>((resolve, reject) => {
      if (this.worker) {
        all.set(id, { resolve, reject });
        this.watch();
      } else {
        reject(new Error("stopped"));
      }
    });
  }

  private notify(method: string, params: object): void {
    this.post({ lsp: { jsonrpc: "2.0", method, params } });
  }

  request<Result>(method: string, params: object): Promise<Result> {
    const id = ++this.lastId;
    const answer = this.wait<Result>(this.requests, id);
    this.post({ lsp: { jsonrpc: "2.0", id, method, params } });
    return answer;
  }

  // A request about the source.
  ask<Result>(method: string, params: object = {}): Promise<Result> {
    return this.request(`textDocument/${method}`, { textDocument: { uri: SOURCE_URI }, ...params });
  }

  call<Called extends keyof Calls>(
    name: Called, input: string | Uint8Array, options: object,
  ): Promise<Calls[Called]> {
    const call = ++this.lastId;
    const answer = this.wait<Calls[Called]>(this.calls, call);
    this.post({ call, name, input, options });
    return answer;
  }

  // ---- The source ----

  change(contentChanges: ContentChange[]): void {
    if (!this.worker) {
      this.start();
      return;
    }
    const textDocument = { uri: SOURCE_URI, version: ++this.version };
    this.notify("textDocument/didChange", { textDocument, contentChanges });
    this.watch();
  }

  configure(): void {
    if (!this.worker) {
      this.start();
      return;
    }
    this.notify("workspace/didChangeConfiguration", { settings: { zirpa: this.owner.settings() } });
  }

  isCurrent(version: number): boolean {
    return version === this.version;
  }
}
