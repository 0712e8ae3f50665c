// What the language server knows, where it is wanted: completion, hover, and commands.

import type { Completion, CompletionContext, CompletionResult } from "@codemirror/autocomplete";
import type { Command, EditorView, KeyBinding, Tooltip } from "@codemirror/view";
import { showDialog } from "@codemirror/view";
import type { Client } from "./client";
import { rendered } from "./markdown";
import {
  changesOf, offsetOf, positionOf, spanOf,
  type CompletionItem, type Range, type TextEdit, type WorkspaceEdit,
} from "./protocol";

// The kinds of items, by the numbers of the protocol.
const TYPES: Record<number, string> = { 3: "function", 6: "variable", 12: "constant", 14: "keyword" };
const NAME = /^[\w$.#]*$/;

// What the server says in words for people.
type Say = (text: string) => void;

function completionOf(item: CompletionItem): Completion {
  const text = typeof item.documentation === "string" ? item.documentation : item.documentation?.value;
  return {
    label: item.label,
    type: TYPES[item.kind] ?? "text",
    detail: item.detail,
    info: text ? () => rendered(text) : undefined,
    apply: item.textEdit?.newText ?? item.label,
  };
}

export function completions(client: Client) {
  return async (context: CompletionContext): Promise<CompletionResult | null> => {
    if (!context.explicit && !context.matchBefore(/[\w$.#,]/)) {
      return null;
    }
    const { doc } = context.state;
    const items = await client
      .ask<CompletionItem[]>("completion", { position: positionOf(doc, context.pos) })
      .catch(() => []);
    if (items.length === 0 || context.aborted) {
      return null;
    }
    const range = items[0].textEdit?.range;
    return {
      from: range ? offsetOf(doc, range.start) : context.pos,
      options: items.map(completionOf),
      validFor: NAME,
    };
  };
}

export function hover(client: Client) {
  return async (view: EditorView, pos: number): Promise<Tooltip | null> => {
    const { doc } = view.state;
    const found = await client
      .ask<{ contents: { value: string }; range: Range } | null>("hover", { position: positionOf(doc, pos) })
      .catch(() => null);
    if (!found || view.state.doc !== doc) {
      return null;
    }
    const { from, to } = spanOf(doc, found.range);
    return { pos: from, end: to, above: true, create: () => ({ dom: rendered(found.contents.value) }) };
  };
}

export function apply(view: EditorView, edits: TextEdit[]): void {
  view.dispatch({ changes: changesOf(view.state.doc, edits), userEvent: "input" });
}

export function editsOf(edit: WorkspaceEdit): TextEdit[] {
  return Object.values(edit.changes).flat();
}

function cursor(view: EditorView) {
  return { position: positionOf(view.state.doc, view.state.selection.main.head) };
}

// A command that waits for the server; its refusals are for people.
function asking(work: (view: EditorView) => Promise<void>, say: Say): Command {
  return (view) => {
    work(view).catch((error: Error) => say(error.message));
    return true;
  };
}

async function goToDefinition(client: Client, view: EditorView, say: Say): Promise<void> {
  const places = await client.ask<{ range: Range }[]>("definition", cursor(view));
  if (places.length === 0) {
    say("There is no name here.");
    return;
  }
  view.dispatch({
    selection: { anchor: offsetOf(view.state.doc, places[0].range.start) }, scrollIntoView: true,
  });
}

async function rename(client: Client, view: EditorView, say: Say): Promise<void> {
  const place = cursor(view);
  const found = await client.ask<{ placeholder: string } | null>("prepareRename", place);
  if (!found) {
    say("There is no name here that can be changed.");
    return;
  }
  const { result } = showDialog(view, {
    label: `New name of ${found.placeholder}`,
    input: { name: "name", value: found.placeholder, type: "text" },
    submitLabel: "Rename",
    focus: "input",
  });
  const form = await result;
  const newName = form && new FormData(form).get("name");
  if (typeof newName === "string") {
    apply(view, editsOf(await client.ask<WorkspaceEdit>("rename", { ...place, newName })));
  }
  view.focus();
}

export async function tidy(client: Client, view: EditorView): Promise<void> {
  const options = { tabSize: 8, insertSpaces: true };
  apply(view, await client.ask<TextEdit[]>("formatting", { options }));
}

// The next column of a field; with the cursor's line in columns, this is what a tab is for.
const insertBlanks: Command = (view) => {
  const { main } = view.state.selection;
  const column = main.from - view.state.doc.lineAt(main.from).from;
  const blanks = " ".repeat(8 - (column % 8));
  view.dispatch(view.state.replaceSelection(blanks), { scrollIntoView: true, userEvent: "input" });
  return true;
};

export function commands(client: Client, say: Say): KeyBinding[] {
  return [
    { key: "F12", run: asking((view) => goToDefinition(client, view, say), say) },
    { key: "F2", run: asking((view) => rename(client, view, say), say) },
    { key: "Shift-Alt-f", run: asking((view) => tidy(client, view), say) },
    { key: "Tab", run: insertBlanks },
  ];
}

