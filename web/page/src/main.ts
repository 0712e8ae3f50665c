// The page: what follows from each change.

import { isolateHistory } from "@codemirror/commands";
import { EditorView, keymap } from "@codemirror/view";
import type { Assembly } from "hxzirpa";
import { tidy } from "./assistance";
import { Client, type State } from "./client";
import { editorOf, goToLine, lineOfCursor } from "./editor";
import { FIRST, onExample } from "./examples";
import { onFile, type Taken } from "./files";
import { hintField, showHints } from "./hints";
import { Listing } from "./listing";
import { startLook } from "./look";
import { MemoryMap } from "./map";
import { Names } from "./names";
import { assemblyOptions, nameSource, onOptions, options, serverSettings, takeOptions } from "./options";
import { Outputs, type Kept } from "./outputs";
import { Problems } from "./problems";
import { contentChanges } from "./protocol";
import { bindScrolling } from "./scrolling";
import { fragmentOf, sharedIn, sharedOf, type Shared } from "./share";
import { scriptAt } from "./scripts";
import { read, write } from "./storage";
import { onPane, paneShown, showPane, showSource, startTabs } from "./tabs";

const byId = (id: string) => document.getElementById(id)!;

// ---- What is said ----

function say(text: string): void {
  byId("said").textContent = text;
}

function count(number: number, word: string): string {
  const figure = number === 0 ? "No" : number.toLocaleString("en");
  return `${figure} ${word}${number === 1 ? "" : "s"}`;
}

function summary({ errors, warnings, lines }: Assembly): string {
  const size = lines.reduce((sum, line) => sum + line.size, 0);
  const warned = warnings > 0 ? `, ${count(warnings, "warning")}` : "";
  return `${count(errors, "error")}${warned} · ${count(size, "byte")}`;
}

// What the last run has come to.
let result = "";

function showState(state: State, reason: string): void {
  byId("stop").hidden = state !== "busy";
  byId("status").textContent =
    state === "busy" ? "Assembling…" : state === "stopped" ? reason : result;
}

// ---- The source ----

function kept(): Shared {
  try {
    return sharedOf(read("source") ?? "");
  } catch {
    return { source: FIRST.source, options: { name: FIRST.name } };
  }
}

function current(): Shared {
  return { source: view.state.doc.toString(), options: options() };
}

let keeping: ReturnType<typeof setTimeout> | undefined;

function keep(): void {
  clearTimeout(keeping);
  keeping = undefined;
  write("source", JSON.stringify(current()));
}

function keepSoon(): void {
  keeping ??= setTimeout(keep, 300);
}

// Another source; Undo brings back the one before.
function replace(source: string): void {
  view.dispatch({
    changes: { from: 0, to: view.state.doc.length, insert: source },
    selection: { anchor: 0 },
    annotations: isolateHistory.of("full"),
    scrollIntoView: true,
  });
  showSource();
}

function goTo(line: number): void {
  showSource();
  goToLine(view, line);
  // A keyboard that comes up on a phone hides what is to be seen.
  if (!matchMedia("(pointer: coarse)").matches) {
    view.focus();
  }
}

// ---- What comes of it ----

let latest: Assembly | undefined;
let isAssembling = false;
let isDue = false;

function outputsOf(assembly: Assembly): Kept[] {
  const { name } = options();
  const source = new TextEncoder().encode(view.state.doc.toString());
  const made = Object.entries(assembly.outputs).map(([kind, output]) => ({ kind, ...output! }));
  return [...made, { kind: "source", name: `${name}.szirpa`, bytes: source }];
}

// What nobody sees is drawn when it is looked at.
function draw(): void {
  const assembly = latest;
  if (!assembly) {
    return;
  }
  const pane = paneShown();
  if (pane === "listing") {
    listing.show(new TextDecoder().decode(assembly.outputs.listing?.bytes));
    followSource();
  } else if (pane === "map") {
    map.show(assembly);
  } else if (pane === "names") {
    names.show(assembly);
  } else if (pane === "files") {
    outputs.show(outputsOf(assembly), assembly.errors > 0);
  }
  markLine();
}

function markLine(): void {
  const line = lineOfCursor(view);
  listing.mark(line);
  map.mark(line);
}

// One run at a time, always of the latest text.
async function assemble(): Promise<void> {
  isDue = true;
  while (isDue && !isAssembling) {
    isDue = false;
    isAssembling = true;
    try {
      latest = await client.call("assemble", view.state.doc.toString(), assemblyOptions());
      result = summary(latest);
      draw();
    } catch (error) {
      result = (error as Error).message;
    }
    // What has been stopped is not begun again before there is another text.
    isDue &&= client.isRunning;
    isAssembling = false;
    if (client.isRunning) {
      byId("status").textContent = result;
    }
  }
}

function updateHints(): void {
  showHints(view, client, options().hints).catch(() => undefined); // likewise
}

// ---- The parts ----

const client: Client = new Client({
  diagnose(diagnostics, version) {
    if (client.isCurrent(version)) {
      problems.take(diagnostics).catch(() => undefined); // an older text's fixes are refused
      updateHints();
    }
  },
  show: showState,
  text: () => view.state.doc.toString(),
  settings: serverSettings,
});

function toMap(): boolean {
  showPane("map");
  map.focus();
  return true;
}

const more = [
  keymap.of([
    { key: "Mod-.", run: () => problems.fixHere() },
    { key: "F6", run: toMap },
  ]),
  EditorView.updateListener.of((update) => {
    if (update.docChanged) {
      say("");
      client.change(contentChanges(update.startState.doc, update.changes));
      void assemble();
      keepSoon();
    }
    if (update.docChanged || update.selectionSet) {
      markLine();
    }
    if (update.viewportChanged && !update.docChanged && options().hints) {
      updateHints();
    }
  }),
  hintField,
];

const first = kept();
takeOptions(first.options);
const view: EditorView = editorOf(first.source, client, say, more);
const problems = new Problems(view, client, say);
const listing = new Listing(goTo);
const followSource = bindScrolling(view, listing);
const map = new MemoryMap(goTo, () => view.focus());
const names = new Names(goTo);
const outputs = new Outputs();

// ---- Ways in ----

async function takeLink(): Promise<void> {
  if (location.hash.length < 2) {
    return;
  }
  try {
    const shared = await sharedIn(location.hash);
    takeOptions(shared.options);
    replace(shared.source);
    changeOptions();
    say("This source was in the link. Undo brings back what was here.");
  } catch (error) {
    say(`The link can't be read: ${(error as Error).message}`);
  }
  // What is changed from here on is no longer what the link holds.
  history.replaceState(null, "", location.pathname + location.search);
}

async function takeFile(given: Promise<Taken>): Promise<void> {
  try {
    const { name, bytes, isProgram } = await given;
    const source = isProgram ? await sourceOf(bytes) : new TextDecoder().decode(bytes);
    nameSource(name);
    replace(source);
    changeOptions();
    say(`${name} is ${isProgram ? "a source again" : "here"}. Undo brings back what was here.`);
  } catch (error) {
    say((error as Error).message);
  }
}

async function sourceOf(program: Uint8Array): Promise<string> {
  if (!client.isRunning) {
    client.start();
  }
  const { source, faults } = await client.call("disassemble", program, {});
  if (source === undefined) {
    const { line, message } = faults[0];
    throw new Error(`This is no program${line === undefined ? "" : `, line ${line}`}: ${message}`);
  }
  return source;
}

function changeOptions(): void {
  byId("title").textContent = `${options().name}.szirpa`;
  client.configure();
  void assemble();
  keepSoon();
}

// ---- Buttons ----

async function share(): Promise<void> {
  const text = byId("link-text") as HTMLInputElement;
  try {
    text.value = new URL(await fragmentOf(current()), location.href).href;
    (byId("link") as HTMLDialogElement).showModal();
    text.select();
  } catch (error) {
    say((error as Error).message);
  }
}

async function copyLink(): Promise<void> {
  const text = byId("link-text") as HTMLInputElement;
  text.select();
  await navigator.clipboard.writeText(text.value).catch(() => document.execCommand("copy"));
  byId("link-says").textContent = "Copied.";
}

function bindButtons(): void {
  byId("tidy").addEventListener("click", () => tidy(client, view).catch((error) => say(error.message)));
  byId("share").addEventListener("click", share);
  byId("link-copy").addEventListener("click", copyLink);
  byId("help").addEventListener("click", () => (byId("helped") as HTMLDialogElement).showModal());
  byId("stop").addEventListener("click", () => client.stop("Stopped. The next change begins anew."));
  onExample((name, source) => {
    nameSource(name);
    replace(source);
    changeOptions();
  });
  onFile(takeFile);
  onOptions(changeOptions);
  onPane(draw);
  addEventListener("pagehide", keep);
  addEventListener("hashchange", takeLink);
}

startLook();
startTabs();
bindButtons();
client.start();
byId("title").textContent = `${options().name}.szirpa`;
void assemble();
void takeLink();
// Not every address may have one.
navigator.serviceWorker?.register(scriptAt("offline.js")).catch(() => undefined);
