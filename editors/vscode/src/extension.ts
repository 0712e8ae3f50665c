// The extension where programs can be started. The server is the program's own; where that is not
// installed, the one that comes with the extension, in a thread.

import { execFile } from "node:child_process";
import { readFile } from "node:fs/promises";
import * as path from "node:path";
import { promisify } from "node:util";
import { Worker } from "node:worker_threads";
import * as vscode from "vscode";
import {
  AbstractMessageReader,
  AbstractMessageWriter,
  type DataCallback,
  LanguageClient,
  type LanguageClientOptions,
  type Message,
  type MessageTransports,
} from "vscode-languageclient/node";
import { begin, configuration, end, type Host, nameOf } from "./common";

const USUAL = "zirpa";

function program(): string {
  return configuration().get<string>("path") || USUAL;
}

let told: string | undefined;

// Who has named a program is told, once, that it is not used.
async function isThere(command: string): Promise<boolean> {
  try {
    await promisify(execFile)(command, ["--version"]);
    return true;
  } catch {
    if (command !== USUAL && command !== told) {
      told = command;
      void vscode.window.showWarningMessage(
        `${command} can't be started, so the server that comes with the extension is used.`,
      );
    }
    return false;
  }
}

// ---- The server in a thread ----

class Reader extends AbstractMessageReader {
  constructor(private readonly worker: Worker) {
    super();
    worker.on("error", (error) => this.fireError(error));
    worker.on("exit", () => this.fireClose());
  }
  listen(take: DataCallback): vscode.Disposable {
    this.worker.on("message", take);
    return { dispose: () => this.worker.off("message", take) };
  }
}

class Writer extends AbstractMessageWriter {
  constructor(private readonly worker: Worker) {
    super();
  }
  async write(message: Message): Promise<void> {
    this.worker.postMessage(message);
  }
  end(): void {
    void this.worker.terminate();
  }
}

async function startThread(): Promise<MessageTransports> {
  const worker = new Worker(path.join(__dirname, "server.js"));
  worker.postMessage(new Uint8Array(await readFile(path.join(__dirname, "hxzirpa.wasm"))));
  return { reader: new Reader(worker), writer: new Writer(worker) };
}

// ---- The host ----

// The messages are in the terminal of the task, and, by the server, at their lines.
async function assemble(document: vscode.TextDocument, options: string[]): Promise<boolean> {
  if (!(await isThere(program()))) {
    return false;
  }
  const name = nameOf(document);
  const task = new vscode.Task(
    { type: "process" },
    vscode.TaskScope.Workspace,
    `assemble ${name}`,
    "ZIRPA",
    new vscode.ProcessExecution(program(), ["build", "--listing", ...options, name], {
      cwd: path.dirname(document.uri.fsPath),
    }),
  );
  await vscode.tasks.executeTask(task);
  return true;
}

const host: Host = {
  async client(options: LanguageClientOptions) {
    const command = program();
    const server = (await isThere(command)) ? { command, args: ["lsp"] } : startThread;
    return new LanguageClient("zirpa", "ZIRPA", server, options);
  },
  assemble,
};

export const activate = (context: vscode.ExtensionContext) => begin(host, context);
export const deactivate = end;
