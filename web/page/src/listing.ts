// The listing beside the source: its rows follow the lines of the source, and the other way round.

import { EditorState, RangeSetBuilder, StateEffect, StateField } from "@codemirror/state";
import {
  Decoration, EditorView, ViewPlugin, type DecorationSet, type ViewUpdate,
} from "@codemirror/view";
import { appearance, shadowOf } from "./theme";

// Address and bytes, the number of the line, the line.
const ROW = /^([0-9A-F ]{20}) +(\d+)\. /;
// More bytes of the line above.
const MORE = /^ {4}[0-9A-F ]{18}$/;

const showRows = StateEffect.define<{ first: number; last: number }>();

// ---- Colours ----

const marks = {
  bytes: Decoration.mark({ class: "cm-bytes" }),
  number: Decoration.mark({ class: "cm-number" }),
  message: Decoration.line({ class: "cm-message" }),
  header: Decoration.line({ class: "cm-header" }),
  shown: Decoration.line({ class: "cm-shown" }),
};

function decorate(view: EditorView): DecorationSet {
  const builder = new RangeSetBuilder<Decoration>();
  const { doc } = view.state;
  for (const { from, to } of view.visibleRanges) {
    for (let { number } = doc.lineAt(from); number <= doc.lineAt(to).number; ++number) {
      const line = doc.line(number);
      const row = ROW.exec(line.text);
      if (row) {
        builder.add(line.from, line.from + 20, marks.bytes);
        builder.add(line.from + 20, line.from + row[0].length, marks.number);
      } else if (MORE.test(line.text)) {
        builder.add(line.from, line.to, marks.bytes);
      } else if (line.length > 0) {
        const isMessage = /^"|^\*{6}/.test(line.text);
        builder.add(line.from, line.from, isMessage ? marks.message : marks.header);
      }
    }
  }
  return builder.finish();
}

const colours = ViewPlugin.fromClass(
  class {
    decorations: DecorationSet;
    constructor(view: EditorView) {
      this.decorations = decorate(view);
    }
    update(update: ViewUpdate): void {
      if (update.docChanged || update.viewportChanged) {
        this.decorations = decorate(update.view);
      }
    }
  },
  { decorations: (plugin) => plugin.decorations },
);

const shownRows = StateField.define<DecorationSet>({
  create: () => Decoration.none,
  update(value, transaction) {
    for (const effect of transaction.effects) {
      if (effect.is(showRows)) {
        const { doc } = transaction.state;
        const { first, last } = effect.value;
        const rows = Array.from({ length: last - first + 1 }, (_each, index) => first + index);
        return Decoration.set(
          rows.filter((row) => row <= doc.lines).map((row) => marks.shown.range(doc.line(row).from)),
        );
      }
    }
    return transaction.docChanged ? value.map(transaction.changes) : value;
  },
  provide: (field) => EditorView.decorations.from(field),
});

// ---- Which row belongs to which line ----

export class Rows {
  // For each row the line of the source that it belongs to; a message stands above its line.
  readonly lines: number[] = [];
  readonly rows = new Map<number, number>();

  constructor(listing: string) {
    const texts = listing.split("\n");
    texts.forEach((text, index) => {
      const found = ROW.exec(text);
      if (found) {
        const line = Number(found[2]);
        this.rows.set(line, index + 1);
        while (this.lines.length <= index) {
          this.lines.push(line);
        }
      } else if (MORE.test(text)) {
        this.lines.push(this.lines[index - 1] ?? 1);
      }
    });
    while (this.lines.length < texts.length) {
      this.lines.push(this.lines.at(-1) ?? 1);
    }
  }

  rowOf(line: number): number {
    for (let each = line; each > 0; --each) {
      const row = this.rows.get(each);
      if (row !== undefined) {
        return row;
      }
    }
    return 1;
  }
}

// ---- The pane ----

// What two texts have in common at their ends stays, and with it what is drawn and where it is scrolled to.
function replacement(before: string, after: string) {
  const most = Math.min(before.length, after.length);
  let from = 0;
  while (from < most && before.charCodeAt(from) === after.charCodeAt(from)) {
    ++from;
  }
  let end = 0;
  const isSame = () => before.at(-1 - end) === after.at(-1 - end);
  while (end < most - from && isSame()) {
    ++end;
  }
  return { from, to: before.length - end, insert: after.slice(from, after.length - end) };
}

export class Listing {
  readonly view: EditorView;
  rows = new Rows("");
  private text = "";

  constructor(private readonly goTo: (line: number) => void) {
    const root = shadowOf("listing");
    this.view = new EditorView({
      root,
      parent: root,
      state: EditorState.create({
        extensions: [
          EditorState.readOnly.of(true), EditorView.editable.of(false), colours, shownRows, appearance,
          EditorView.contentAttributes.of({ "aria-label": "Listing", tabindex: "0" }),
          EditorView.domEventHandlers({ click: (event) => this.follow(event) }),
        ],
      }),
    });
  }

  show(text: string): void {
    this.view.dispatch({ changes: replacement(this.text, text) });
    this.text = text;
    this.rows = new Rows(text);
  }

  mark(line: number): void {
    const first = this.rows.rows.get(line);
    let last = first ?? 0;
    while (first && this.rows.lines[last] === line) {
      ++last;
    }
    this.view.dispatch({ effects: showRows.of(first ? { first, last } : { first: 1, last: 0 }) });
  }

  // A selection is made to be copied; a click goes to the line.
  private follow({ clientX: x, clientY: y }: MouseEvent): void {
    const pos = this.view.posAtCoords({ x, y });
    if (pos !== null && this.view.state.selection.main.empty) {
      this.goTo(this.rows.lines[this.view.state.doc.lineAt(pos).number - 1]);
    }
  }
}
