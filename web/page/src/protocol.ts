// As much of the Language Server Protocol as the page speaks.

import type { ChangeSet, Text } from "@codemirror/state";

export interface Position {
  line: number;
  character: number;
}

export interface Range {
  start: Position;
  end: Position;
}

export interface TextEdit {
  range: Range;
  newText: string;
}

export interface ServerDiagnostic {
  range: Range;
  severity: number;
  message: string;
  code?: string;
  codeDescription?: { href: string };
  tags?: number[];
  relatedInformation?: { location: { range: Range }; message: string }[];
}

export interface WorkspaceEdit {
  changes: Record<string, TextEdit[]>;
}

export interface CodeAction {
  title: string;
  edit: WorkspaceEdit;
  diagnostics?: ServerDiagnostic[];
}

export interface CompletionItem {
  label: string;
  kind: number;
  detail?: string;
  documentation?: string | { value: string };
  textEdit?: TextEdit;
}

export interface ContentChange {
  range: Range;
  text: string;
}

export const UNNECESSARY = 1;

export function positionOf(text: Text, offset: number): Position {
  const line = text.lineAt(offset);
  return { line: line.number - 1, character: offset - line.from };
}

// Positions beyond a line or the text are those of its end.
export function offsetOf(text: Text, { line, character }: Position): number {
  if (line >= text.lines) {
    return text.length;
  }
  const found = text.line(line + 1);
  return Math.min(found.from + character, found.to);
}

export function spanOf(text: Text, range: Range): { from: number; to: number } {
  return { from: offsetOf(text, range.start), to: offsetOf(text, range.end) };
}

// Changes are made one after the other; from the end on, each finds the text before it as it was.
export function contentChanges(before: Text, changes: ChangeSet): ContentChange[] {
  const found: ContentChange[] = [];
  changes.iterChanges((from, to, _start, _end, inserted) => {
    const range = { start: positionOf(before, from), end: positionOf(before, to) };
    found.push({ range, text: inserted.toString() });
  });
  return found.reverse();
}

export function changesOf(text: Text, edits: TextEdit[]): { from: number; to: number; insert: string }[] {
  return edits.map((edit) => ({ ...spanOf(text, edit.range), insert: edit.newText }));
}
