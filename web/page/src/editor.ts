// The editor of the source.

import { autocompletion, completionKeymap } from "@codemirror/autocomplete";
import { defaultKeymap, history, historyKeymap, insertNewline } from "@codemirror/commands";
import { lintKeymap } from "@codemirror/lint";
import { highlightSelectionMatches, searchKeymap } from "@codemirror/search";
import { EditorState, type Extension } from "@codemirror/state";
import {
  EditorView, highlightActiveLine, highlightActiveLineGutter, hoverTooltip, keymap, lineNumbers,
} from "@codemirror/view";
import { commands, completions, hover } from "./assistance";
import type { Client } from "./client";
import { language } from "./language";
import { appearance, shadowOf } from "./theme";

const TAB_HINT = "Tab goes to the next column; Escape, then Tab, leaves the editor.";

export function editorOf(text: string, client: Client, say: (text: string) => void,
                         more: Extension): EditorView {
  const root = shadowOf("editor");
  return new EditorView({
    root,
    parent: root,
    state: EditorState.create({
      doc: text,
      extensions: [
        more,
        keymap.of([
          ...commands(client, say), ...completionKeymap, ...searchKeymap, ...historyKeymap, ...lintKeymap,
          // A line begins with its label, so what the line above begins with does not matter.
          { key: "Enter", run: insertNewline },
          ...defaultKeymap,
        ]),
        lineNumbers(), history(), highlightActiveLine(), highlightActiveLineGutter(),
        highlightSelectionMatches(),
        // Enter ends a line; it takes a completion only when one has been chosen.
        autocompletion({
          override: [completions(client)], selectOnOpen: false, interactionDelay: 0, icons: false,
        }),
        hoverTooltip(hover(client), { hoverTime: 250 }),
        language,
        appearance,
        EditorState.tabSize.of(8),
        EditorView.contentAttributes.of({
          "aria-label": "Source", "aria-description": TAB_HINT, tabindex: "0", autocapitalize: "off",
          spellcheck: "false",
        }),
      ],
    }),
  });
}

export function lineOfCursor(view: EditorView): number {
  return view.state.doc.lineAt(view.state.selection.main.head).number;
}

export function goToLine(view: EditorView, line: number): void {
  const { from } = view.state.doc.line(Math.min(Math.max(line, 1), view.state.doc.lines));
  view.dispatch({
    selection: { anchor: from },
    effects: EditorView.scrollIntoView(from, { y: "nearest", yMargin: 60 }),
  });
}
