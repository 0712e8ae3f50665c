// The extension in a browser: the server is a worker's.

import * as vscode from "vscode";
import { LanguageClient } from "vscode-languageclient/browser";
import { begin, end } from "./common";

export async function activate(context: vscode.ExtensionContext): Promise<void> {
  const file = (name: string) => vscode.Uri.joinPath(context.extensionUri, "dist", name);
  await begin(
    {
      async client(options) {
        const worker = new Worker(file("browserServer.js").toString(true));
        worker.postMessage(await vscode.workspace.fs.readFile(file("hxzirpa.wasm")));
        return new LanguageClient("zirpa", "ZIRPA", options, worker);
      },
      assemble: async () => false,
    },
    context,
  );
}

export const deactivate = end;
