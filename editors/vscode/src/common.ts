// What the extension does wherever it runs: the client of zirpa's language server, and three commands.
// Colours, snippets and problem matchers are files, and work without it.

import * as vscode from "vscode";
import type { BaseLanguageClient, LanguageClientOptions } from "vscode-languageclient";

const LANGUAGE = "szirpa";
const LISTING = "zirpa-listing";

// What differs from place to place.
export interface Host {
  // A client of the server that there is, not started yet.
  client(options: LanguageClientOptions): Promise<BaseLanguageClient>;
  // Assembles with the program, where there is one; otherwise the server does.
  assemble(document: vscode.TextDocument, options: string[]): Promise<boolean>;
}

let host: Host;
let client: BaseLanguageClient | undefined;

export function configuration(): vscode.WorkspaceConfiguration {
  return vscode.workspace.getConfiguration("zirpa");
}

export function nameOf(document: vscode.TextDocument): string {
  return document.uri.path.replace(/.*\//, "");
}

// ---- The server ----

async function start(): Promise<void> {
  const started = await host.client({
    documentSelector: [{ language: LANGUAGE }],
    // Plain values: the editor's object has functions, which no worker can be sent.
    initializationOptions: JSON.parse(JSON.stringify(configuration())),
  });
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

const LISTS = ["compatibility", "define", "include", "allow", "deny", "warn"];

function options(): string[] {
  const found = LISTS.flatMap((list) => words(list).flatMap((word) => [`--${list}`, word]));
  return configuration().get<boolean>("strict", false) ? [...found, "--strict"] : found;
}

// The same for the server.
function settings(): Record<string, unknown> {
  const found = Object.fromEntries(LISTS.map((list) => [list, words(list)]));
  return { ...found, strict: configuration().get<boolean>("strict", false) };
}

// The outputs stand beside the source.
async function assemble(): Promise<void> {
  const document = source();
  if (document && (await document.save()) && !(await host.assemble(document, options()))) {
    await assembleByServer(document);
  }
}

interface Assembled {
  errors: number;
  outputs: Record<string, { name: string; bytes: Uint8Array }>;
}

// The messages are at their lines already, so their number will do. What an earlier run has left could
// be taken for the program, so it goes as it would with the program itself.
async function assembleByServer(document: vscode.TextDocument): Promise<void> {
  const result = await client?.sendRequest<Assembled>("zirpa/assemble", {
    source: await vscode.workspace.fs.readFile(document.uri),
    options: { ...settings(), name: nameOf(document), listing: true },
  });
  if (!result) {
    return;
  }
  const beside = (name: string) => vscode.Uri.joinPath(document.uri, "..", name);
  for (const extension of result.outputs.records ? [] : [".s19", ".fmem"]) {
    const old = beside(nameOf(document).replace(/\.[^.]*$/, "") + extension);
    await vscode.workspace.fs.delete(old).then(undefined, () => undefined);
  }
  const outputs = Object.values(result.outputs);
  for (const { name, bytes } of outputs) {
    await vscode.workspace.fs.writeFile(beside(name), bytes);
  }
  const written = `${outputs.map(({ name }) => name).join(", ")}: written`;
  void (result.outputs.records
    ? vscode.window.showInformationMessage(written)
    : vscode.window.showErrorMessage(`${nameOf(document)}: errors: ${result.errors}`));
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
    `Map of ${nameOf(document)}`,
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

export async function begin(given: Host, context: vscode.ExtensionContext): Promise<void> {
  host = given;
  const listings = new Listings();
  context.subscriptions.push(
    vscode.commands.registerCommand("zirpa.assemble", assemble),
    vscode.commands.registerCommand("zirpa.showListing", showListing),
    vscode.commands.registerCommand("zirpa.showMap", showMap),
    vscode.workspace.registerTextDocumentContentProvider(LISTING, listings),
    vscode.workspace.onDidChangeTextDocument((change) => listings.follow(change.document)),
    vscode.workspace.onDidChangeConfiguration(async (change) => {
      if (change.affectsConfiguration("zirpa.path")) {
        await stop();
        await start();
      }
    }),
  );
  await start();
}

export const end = stop;
