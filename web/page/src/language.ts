// Colours. A statement is read as the assembler reads it: a label in the first column, an operation that
// ends at a blank, an operand that ends at a blank too, and then text that is ignored.

import { HighlightStyle, StreamLanguage, syntaxHighlighting, type StringStream } from "@codemirror/language";
import { tags } from "@lezer/highlight";
import words from "./words.json";

// What is expected next in a line.
type Field =
  | "operation" | "conditional" | "operand" | "operandGoesOn" | "text" | "name" | "definition" | "message"
  | "rest";

interface State {
  field: Field;
}

interface Meaning {
  style: string;
  next: Field;
}

const meanings = new Map<string, Meaning>();
const conditionals = new Map<string, Meaning>();

function learn(into: Map<string, Meaning>, found: string[], style: string, next: Field): void {
  for (const word of found) {
    into.set(word, { style, next });
  }
}

const { instructions, directives } = words;
learn(meanings, [...instructions.operand, ...instructions.pair], "keyword", "operand");
learn(meanings, instructions.branch, "controlKeyword", "operand");
learn(meanings, instructions.inherent, "keyword", "rest");
learn(meanings, Object.values(directives).flat(), "definitionKeyword", "operand");
learn(meanings, directives.text, "definitionKeyword", "text");
learn(conditionals, words.conditionals.test, "processingInstruction", "operand");
learn(conditionals, words.conditionals.name, "processingInstruction", "name");
learn(conditionals, words.conditionals.definition, "processingInstruction", "definition");
learn(conditionals, words.conditionals.plain, "processingInstruction", "rest");
learn(conditionals, words.conditionals.message, "processingInstruction", "message");

const register = new RegExp(`^(${words.registers.join("|")})(?![a-z0-9_])`, "i");

// Everything but the printing characters of ASCII is a blank to the assembler.
const BLANKS = /^[^!-\x7f]+/;
const WORD = /^[!-\x7f]+/;

function word(stream: StringStream, state: State, known: Map<string, Meaning>): string {
  stream.match(WORD);
  const meaning = known.get(stream.current().toLowerCase());
  state.field = meaning?.next ?? "rest";
  return meaning?.style ?? "invalid";
}

function firstColumn(stream: StringStream, state: State): string | null {
  state.field = "operation";
  if (stream.match(/^;/)) {
    stream.skipToEnd();
    return "lineComment";
  }
  if (stream.match(/^\.stab/)) {
    stream.skipToEnd();
    return "meta";
  }
  if (stream.match(/^[^!-\x7f]*#[^!-\x7f]*/)) {
    state.field = "conditional";
    return "processingInstruction";
  }
  if (stream.match(BLANKS)) {
    return null;
  }
  if (stream.match(/^[a-z_][a-z0-9_$.]{0,127}:?(?![!-\x7f])/i)) {
    return "labelName";
  }
  stream.match(WORD);
  return "invalid";
}

function operand(stream: StringStream): string {
  if (stream.match(/^'.'/)) {
    return "character";
  }
  if (stream.match(/^(\$[0-9a-f]+|[0-9]+)/i) || (isValueBegun(stream) && stream.match(/^%[01]+/))) {
    return "number";
  }
  if (stream.match(register)) {
    return "atom";
  }
  if (stream.match(/^[a-z_][a-z0-9_$.]*/i)) {
    return "variableName";
  }
  stream.next();
  return "operator";
}

// After a value the sign is the remainder, elsewhere it begins a binary number.
function isValueBegun(stream: StringStream): boolean {
  return !/[a-z0-9_$.')]/i.test(stream.string.charAt(stream.pos - 1));
}

function rest(stream: StringStream): string {
  stream.skipToEnd();
  return "lineComment";
}

function field(stream: StringStream, state: State): string {
  switch (state.field) {
    case "operation":
      return word(stream, state, meanings);
    case "conditional":
      return word(stream, state, conditionals);
    case "operand":
    case "operandGoesOn":
      state.field = "operandGoesOn";
      return operand(stream);
    case "text":
      state.field = "rest";
      // The first character may be a quote, which then does not close the text.
      return stream.match(/^"(\\.|[^\\])(\\.|[^\\"])*"/) ? "string" : word(stream, state, new Map());
    case "name":
    case "definition":
      state.field = state.field === "name" ? "rest" : "operand";
      stream.match(WORD);
      return "variableName";
    case "message":
      stream.skipToEnd();
      return "string";
    default:
      return rest(stream);
  }
}

function token(stream: StringStream, state: State): string | null {
  if (stream.sol()) {
    return firstColumn(stream, state);
  }
  if (stream.match(BLANKS)) {
    state.field = state.field === "operandGoesOn" ? "rest" : state.field;
    return null;
  }
  // Within an operand the sign is one of its characters.
  const isComment = state.field !== "operandGoesOn" && stream.peek() === ";";
  return isComment ? rest(stream) : field(stream, state);
}

const szirpa = StreamLanguage.define<State>({
  name: "szirpa",
  startState: () => ({ field: "operation" }),
  token,
  languageData: { commentTokens: { line: ";" } },
});

const colours = HighlightStyle.define([
  { tag: tags.lineComment, color: "var(--comment)" },
  { tag: [tags.keyword, tags.controlKeyword], color: "var(--keyword)", fontWeight: "600" },
  { tag: tags.definitionKeyword, color: "var(--directive)", fontWeight: "600" },
  { tag: [tags.processingInstruction, tags.meta], color: "var(--directive)" },
  { tag: tags.labelName, color: "var(--label)", fontWeight: "600" },
  { tag: tags.variableName, color: "var(--label)" },
  { tag: [tags.number, tags.character], color: "var(--number)" },
  { tag: tags.string, color: "var(--string)" },
  { tag: tags.atom, color: "var(--register)" },
  { tag: tags.operator, color: "var(--quiet)" },
  { tag: tags.invalid, color: "var(--error)" },
]);

export const language = [szirpa, syntaxHighlighting(colours)];
