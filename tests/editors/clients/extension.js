// A session of the VS Code extension in a stand-in for the editor, with a real server; writes what
// it saw to seen.json in the working directory. Arguments: the bundle, and the program with the server;
// without it, the server is the one that comes with the extension.
"use strict";

const fs = require("fs");
const path = require("path");
const Module = require("module");
const { execFileSync } = require("child_process");

const resolve = Module._resolveFilename;
Module._resolveFilename = (request, ...others) =>
  request === "vscode" ? require.resolve("./vscode.js") : resolve(request, ...others);

const vscode = require("./vscode.js");
const { state, open, change, configure, TextDocument } = vscode.hand;
const [bundle, server] = process.argv.slice(2);
const seen = {};
const noToken = new vscode.CancellationTokenSource().token;

async function waitFor(what, condition) {
  for (let turn = 0; turn < 1000; ++turn) {
    const found = await condition();
    if (found) {
      return found;
    }
    await new Promise((done) => setTimeout(done, 20));
  }
  throw new Error(`waited in vain: ${what}`);
}

const diagnosticsOf = (document) => state.diagnostics.get(document.uri.toString());

function provider(name) {
  return waitFor(name, () => state.providers[name]);
}

async function fixJumpAndRename(document) {
  const [found] = await waitFor("diagnostics", () => diagnosticsOf(document)?.length && diagnosticsOf(document));
  const { start } = found.range;
  seen.diagnostics = [[start.line + 1, start.character + 1, found.code.value ?? found.code, found.message]];

  const context = { diagnostics: [found], only: undefined, triggerKind: 1 };
  const actions = await (await provider("CodeActions")).provideCodeActions(document, found.range, context, noToken);
  seen.offered = actions.map((action) => action.title);
  await change(document, actions[0].edit.edits);
  await waitFor("no diagnostics", () => diagnosticsOf(document)?.length === 0);

  const place = new vscode.Position(1, 17);
  const definitions = await (await provider("Definition")).provideDefinition(document, place, noToken);
  seen.jump = [definitions].flat()[0].range.start.line + 1;

  const edit = await (await provider("Rename")).provideRenameEdits(document, place, "tempo", noToken);
  await change(document, edit.edits);
  seen.text = document.text.trimEnd().split("\n");
}

async function showHints(document) {
  const whole = new vscode.Range(0, 0, 6, 0);
  const hints = await (await provider("InlayHints")).provideInlayHints(document, whole, noToken);
  seen.hints = hints.filter((hint) => hint.position.line === 1).map((hint) => hint.label);
}

async function runCommands(document) {
  await state.commands["zirpa.showListing"]();
  const [{ document: listing, options }] = state.shown;
  seen.listing = listing.text.split("\n");
  seen.listingName = listing.uri.path;
  seen.column = options.viewColumn;

  await state.commands["zirpa.showMap"]();
  seen.map = state.panels[0].webview.html;
  const before = seen.map;
  await change(document, [{ range: new vscode.Range(5, 0, 5, 0), newText: "more    RMB     3\n" }]);
  await waitFor("another map", () => state.panels[0].webview.html !== before);

  await state.commands["zirpa.assemble"]();
  if (state.tasks.length > 0) {
    const { process: command, args, options: where } = state.tasks[0].execution;
    seen.arguments = args;
    seen.printed = execFileSync(command, args, where).toString();
  }
  seen.written = fs.readdirSync(path.dirname(document.uri.fsPath)).sort();
}

// After a mistake nothing may be left that could be taken for the program.
async function assembleMistake(document) {
  await change(document, [{ range: new vscode.Range(5, 0, 5, 0), newText: " WRONG\n" }]);
  await state.commands["zirpa.assemble"]();
  seen.left = fs.readdirSync(path.dirname(document.uri.fsPath)).sort();
}

async function session(extension) {
  const document = new TextDocument(
    vscode.Uri.file(path.resolve("prog.szirpa")),
    fs.readFileSync("prog.szirpa", "utf8"),
  );
  await open(document);
  // What is installed is used; where there is nothing, what comes with the extension.
  const name = server ?? "no-such-program";
  state.settings = { zirpa: { path: name } };
  await extension.activate({ subscriptions: [] });
  await fixJumpAndRename(document);
  await showHints(document);
  await configure({ zirpa: { path: name, allow: ["unused-label"], define: ["FAST"] } });
  await runCommands(document);
  if (!server) {
    await assembleMistake(document);
  }
  seen.messages = state.messages;
  await extension.deactivate();
}

session(require(bundle))
  .catch((failure) => {
    seen.failure = failure.stack;
  })
  .finally(() => {
    fs.writeFileSync("seen.json", JSON.stringify(seen));
    process.exit();
  });
