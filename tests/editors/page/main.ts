// The page: VS Code's editor and extension host with the extension's own code, and a user's steps.

import { initialize } from "@codingame/monaco-vscode-api";
import { ExtensionHostKind, registerExtension } from "@codingame/monaco-vscode-api/extensions";
import configuration, {
  updateUserConfiguration,
} from "@codingame/monaco-vscode-configuration-service-override";
import * as monaco from "@codingame/monaco-vscode-editor-api";
import editorService from "@codingame/monaco-vscode-editor-service-override";
import extensions from "@codingame/monaco-vscode-extensions-service-override";
import files, {
  RegisteredFileSystemProvider,
  RegisteredMemoryFile,
  registerFileSystemOverlay,
} from "@codingame/monaco-vscode-files-service-override";
import languages from "@codingame/monaco-vscode-languages-service-override";
import model from "@codingame/monaco-vscode-model-service-override";
import textmate from "@codingame/monaco-vscode-textmate-service-override";
import theme from "@codingame/monaco-vscode-theme-service-override";
import "@codingame/monaco-vscode-theme-defaults-default-extension";
import "vscode/localExtensionHost";

import manifest from "../vscode/package.json";
import * as extension from "extension";

const WORKERS: Record<string, string> = { TextMateWorker: "textmate.worker.js" };
self.MonacoEnvironment = {
  getWorker: (_id: string, label: string) =>
    new Worker(WORKERS[label] ?? "editor.worker.js", { type: "module" }),
};

async function waitFor<Found>(what: string, condition: () => Found): Promise<Found> {
  for (let turn = 0; turn < 500; ++turn) {
    const found = condition();
    if (found) {
      return found;
    }
    await new Promise((done) => setTimeout(done, 20));
  }
  throw new Error(`waited in vain: ${what}`);
}

let vscode: any;
let text: monaco.editor.ITextModel;
let uri: any;
const seen: Record<string, unknown> = {};

function diagnostics(): any[] {
  return vscode.languages.getDiagnostics(uri);
}

function ask(command: string, ...values: unknown[]): Promise<any> {
  return vscode.commands.executeCommand(`vscode.execute${command}`, uri, ...values);
}

async function start(source: string): Promise<void> {
  const container = document.getElementById("editor")!;
  await initialize(
    {
      ...configuration(), ...editorService(async () => undefined), ...extensions(), ...files(),
      ...languages(), ...model(), ...textmate(), ...theme(),
    },
    container,
  );
  await updateUserConfiguration(
    JSON.stringify({ "editor.inlayHints.enabled": "on", "workbench.colorTheme": "Default Dark Modern" }),
  );
  // The code is part of this page, and started below.
  const { main: _main, browser: _browser, ...rest } = manifest;
  const { getApi, setAsDefaultApi, whenReady, registerFileUrl } = registerExtension(
    rest as any,
    ExtensionHostKind.LocalProcess,
  );
  for (const name of ["language-configuration.json", "syntaxes/szirpa.tmLanguage.json"]) {
    registerFileUrl(name, new URL(`vscode/${name}`, location.href).href);
  }
  await setAsDefaultApi();
  await whenReady();
  vscode = await getApi();
  const provider = new RegisteredFileSystemProvider(false);
  uri = vscode.Uri.file("/project/prog.szirpa");
  provider.registerFile(new RegisteredMemoryFile(uri, source));
  registerFileSystemOverlay(1, provider);
  const reference = await monaco.editor.createModelReference(monaco.Uri.file(uri.path));
  text = reference.object.textEditorModel!;
  monaco.editor.create(container, {
    model: text, fontSize: 14, minimap: { enabled: false }, scrollBeyondLastLine: false,
    renderLineHighlight: "none", overviewRulerLanes: 0, automaticLayout: true,
    guides: { indentation: false },
  });
  // In a browser an extension's own files have addresses, which the editor reads.
  const nothing = () => ({ dispose() {} });
  vscode.workspace.registerFileSystemProvider("http", {
    readFile: async (file: any) =>
      new Uint8Array(await (await fetch(file.toString(true))).arrayBuffer()),
    onDidChangeFile: nothing, watch: nothing, stat: nothing, readDirectory: nothing,
    createDirectory: nothing, writeFile: nothing, delete: nothing, rename: nothing,
  });
  const extensionUri = vscode.Uri.parse(new URL("vscode", location.href).href);
  await extension.activate({ subscriptions: [], extensionUri } as any);
}

async function seeMistake(): Promise<unknown> {
  await waitFor("diagnostics", () => diagnostics().length > 0);
  seen.language = text.getLanguageId();
  seen.diagnostics = diagnostics().map((each) => [
    each.range.start.line + 1, each.range.start.character + 1, each.code?.value ?? each.code, each.message,
  ]);
  return seen;
}

async function fixJumpAndRename(): Promise<unknown> {
  const actions = await ask("CodeActionProvider", diagnostics()[0].range);
  seen.offered = actions.map((action: any) => action.title);
  await vscode.workspace.applyEdit(actions[0].edit);
  await waitFor("no diagnostics", () => diagnostics().length === 0);

  const place = new vscode.Position(1, 17);
  const [definition] = await ask("DefinitionProvider", place);
  seen.jump = (definition.range ?? definition.targetRange).start.line + 1;

  await vscode.workspace.applyEdit(await ask("DocumentRenameProvider", place, "tempo"));
  seen.text = text.getValue().trimEnd().split("\n");

  const hints = await ask("InlayHintProvider", new vscode.Range(1, 0, 2, 0));
  seen.hints = hints.map((hint: any) => hint.label);
  return seen;
}

Object.assign(window, { start, seeMistake, fixJumpAndRename });
