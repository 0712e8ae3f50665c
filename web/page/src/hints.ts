// Values of operands, and address and bytes of lines, in the text; asked for where it is seen.

import { RangeSetBuilder, StateEffect, StateField } from "@codemirror/state";
import { Decoration, EditorView, WidgetType, type DecorationSet } from "@codemirror/view";
import type { Client } from "./client";
import { offsetOf, positionOf, type Position } from "./protocol";

interface Hint {
  position: Position;
  label: string;
}

class Label extends WidgetType {
  constructor(private readonly text: string) {
    super();
  }
  eq(other: Label): boolean {
    return other.text === this.text;
  }
  toDOM(): HTMLElement {
    const dom = document.createElement("span");
    dom.className = this.text.startsWith("=") ? "cm-hint" : "cm-hint cm-bytes";
    dom.textContent = this.text;
    return dom;
  }
}

const putHints = StateEffect.define<DecorationSet>();

export const hintField = StateField.define<DecorationSet>({
  create: () => Decoration.none,
  update(value, transaction) {
    const put = transaction.effects.find((effect) => effect.is(putHints));
    return put ? put.value : value.map(transaction.changes);
  },
  provide: (field) => EditorView.decorations.from(field),
});

export async function showHints(view: EditorView, client: Client, areWanted: boolean): Promise<void> {
  const { state } = view;
  if (!areWanted && state.field(hintField).size === 0) {
    return;
  }
  const { from, to } = view.viewport;
  const range = { start: positionOf(state.doc, from), end: positionOf(state.doc, to) };
  const hints = areWanted ? await client.ask<Hint[]>("inlayHint", { range }) : [];
  if (view.state.doc !== state.doc) {
    return;
  }
  const builder = new RangeSetBuilder<Decoration>();
  for (const { position, label } of hints) {
    const place = offsetOf(state.doc, position);
    builder.add(place, place, Decoration.widget({ widget: new Label(label), side: 1 }));
  }
  view.dispatch({ effects: putHints.of(builder.finish()) });
}
