// The extension's own code: the client of zirpa's language server, and three commands. Colours, snippets
// and problem matchers are files, and work without it.

import { execFile } from "node:child_process";
import * as path from "node:path";
import { promisify } from "node:util";
import * as vscode from "vscode";
import { LanguageClient } from "vscode-languageclient/node";

const LANGUAGE = "szirpa";
const LISTING = "zirpa-listing";

let client: LanguageClient | undefined;
let isMissingTold = false;

function configuration(): vscode.WorkspaceConfiguration {
  return vscode.workspace.getConfiguration("zirpa");
}

function program(): string {
  return configuration().get<string>("path") || "zirpa";
}

// ---- The server ----

// A program that can't be started is told once; the client itself would tell it again and again.
async function isThere(command: string): Promise<boolean> {
  try {
    await promisify(execFile)(command, ["--version"]);
    return true;
  } catch {
    if (!isMissingTold) {
      isMissingTold = true;
      void vscode.window.showWarningMessage(
        `${command} can't be started, so there are colours and snippets only. ` +
          "Install zirpa, or set zirpa.path.",
      );
    }
    return false;
  }
}

async function start(): Promise<void> {
  const command = program();
  if (!(await isThere(command))) {
    return;
  }
  const started = new LanguageClient(
    "zirpa",
    "ZIRPA",
    { command, args: ["lsp"] },
    {
      documentSelector: [{ language: LANGUAGE }],
      initializationOptions: configuration(),
    },
  );
  client = started;
  await started.start();
}

async function stop(): Promise<void> {
  const stopped = client;
  client = undefined;
  await stopped?.stop();
}

// What the server says of the text in an editor, saved or not; undefined without a server.
async function ask<Result>(method: string, uri: vscode.Uri): Promise<Result | undefined> {
  return client?.sendRequest<Result>(method, { textDocument: { uri: uri.toString() } });
}

// ---- Commands ----

// The source in front; undefined, with a message, where there is none.
function source(): vscode.TextDocument | undefined {
  const document = vscode.window.activeTextEditor?.document;
  if (document?.languageId === LANGUAGE) {
    return document;
  }
  void vscode.window.showInformationMessage("There is no ZIRPA source in front.");
  return undefined;
}

function words(setting: string): string[] {
  return configuration().get<string[]>(setting, []);
}

function options(): string[] {
  const lists: [string, string][] = [
    ["compatibility", "--compatibility"],
    ["define", "--define"],
    ["include", "--include"],
    ["allow", "--allow"],
    ["deny", "--deny"],
    ["warn", "--warn"],
  ];
  const found = lists.flatMap(([setting, option]) =>
    words(setting).flatMap((word) => [option, word]),
  );
  return configuration().get<boolean>("strict", false) ? [...found, "--strict"] : found;
}

// The outputs stand beside the source; the messages are in the terminal of the task, and, by the
// server, at their lines.
async function assemble(): Promise<void> {
  const document = source();
  if (!document || !(await document.save()) || !(await isThere(program()))) {
    return;
  }
  const file = document.uri.fsPath;
  const task = new vscode.Task(
    { type: "process" },
    vscode.TaskScope.Workspace,
    `assemble ${path.basename(file)}`,
    "ZIRPA",
    new vscode.ProcessExecution(program(), ["build", "--listing", ...options(), path.basename(file)], {
      cwd: path.dirname(file),
    }),
  );
  await vscode.tasks.executeTask(task);
}

// A listing is a document of its own, named after its source, and follows it.
class Listings implements vscode.TextDocumentContentProvider {
  private readonly changed = new vscode.EventEmitter<vscode.Uri>();
  readonly onDidChange = this.changed.event;

  static of(sourceUri: vscode.Uri): vscode.Uri {
    const name = sourceUri.path.replace(/\.szirpa$/i, "") + ".lst";
    return sourceUri.with({ scheme: LISTING, path: name, query: sourceUri.toString() });
  }

  follow(document: vscode.TextDocument): void {
    if (document.languageId === LANGUAGE) {
      this.changed.fire(Listings.of(document.uri));
    }
  }

  async provideTextDocumentContent(uri: vscode.Uri): Promise<string> {
    const listing = await ask<{ text: string }>("zirpa/listing", vscode.Uri.parse(uri.query));
    return listing?.text ?? "";
  }
}

async function showListing(): Promise<void> {
  const document = source();
  if (!document || !client) {
    return;
  }
  const listing = await vscode.workspace.openTextDocument(Listings.of(document.uri));
  await vscode.window.showTextDocument(listing, {
    viewColumn: vscode.ViewColumn.Beside,
    preserveFocus: true,
    preview: true,
  });
}

function page(svg: string): string {
  const policy = "default-src 'none'; style-src 'unsafe-inline'";
  return (
    `<!DOCTYPE html><html lang="en"><head><meta charset="utf-8">` +
    `<meta http-equiv="Content-Security-Policy" content="${policy}">` +
    `<title>Memory map</title><style>body{background:#fff}svg{max-width:100%;height:auto}</style>` +
    `</head><body>${svg}</body></html>`
  );
}

// A map is a picture, and follows its source.
async function showMap(): Promise<void> {
  const document = source();
  if (!document || !client) {
    return;
  }
  const panel = vscode.window.createWebviewPanel(
    "zirpa.map",
    `Map of ${path.basename(document.uri.path)}`,
    { viewColumn: vscode.ViewColumn.Beside, preserveFocus: true },
    { enableScripts: false },
  );
  const draw = async () => {
    const map = await ask<{ svg: string }>("zirpa/memoryMap", document.uri);
    panel.webview.html = page(map?.svg ?? "");
  };
  const following = vscode.workspace.onDidChangeTextDocument((change) => {
    if (change.document === document) {
      draw().catch(() => undefined); // an older text's answer is refused
    }
  });
  panel.onDidDispose(() => following.dispose());
  await draw();
}

// ---- Life ----

export async function activate(context: vscode.ExtensionContext): Promise<void> {
  const listings = new Listings();
  context.subscriptions.push(
    vscode.commands.registerCommand("zirpa.assemble", assemble),
    vscode.commands.registerCommand("zirpa.showListing", showListing),
    vscode.commands.registerCommand("zirpa.showMap", showMap),
    vscode.workspace.registerTextDocumentContentProvider(LISTING, listings),
    vscode.workspace.onDidChangeTextDocument((change) => listings.follow(change.document)),
    vscode.workspace.onDidChangeConfiguration(async (change) => {
      if (change.affectsConfiguration("zirpa.path")) {
        isMissingTold = false;
        await stop();
        await start();
      }
    }),
  );
  await start();
}

export async function deactivate(): Promise<void> {
  await stop();
}
