/** A text, which is encoded as UTF-8, or bytes, which are taken as they are. */
export type Content = string | ArrayBuffer | ArrayBufferView;

/** Where the module comes from: its address, its bytes, or what has been made of them. */
export type ModuleSource = string | URL | BufferSource | Response | WebAssembly.Module;

/** Lines and columns count from 1, columns in characters; endColumn is the one after the last. */
export interface Place {
  line?: number;
  column?: number;
  endColumn?: number;
}

export interface Fix extends Place {
  title: string;
  /** What goes into the place. */
  text: string;
}

export interface Note extends Place {
  message: string;
}

export interface Diagnostic extends Place {
  file: string;
  severity: "error" | "warning";
  /** Stable: it never changes its meaning. */
  id: string;
  message: string;
  hint?: string;
  notes?: Note[];
  fixes?: Fix[];
}

/** A line that has been read; those below END are not. */
export interface Line {
  line: number;
  kind:
    | "empty"
    | "comment"
    | "skipped"
    | "conditional"
    | "label"
    | "instruction"
    | "directive"
    | "debugger"
    | "faulty";
  /** Of the first byte, or where it would be. */
  address: number;
  size: number;
  /** Empty for a line that reserves bytes, which are 0. */
  bytes: number[];
}

export interface Use extends Place {
  kind: "value" | "test" | "start";
}

/** In the order of the source. The place is that of the first definition; an option has none. */
export interface SymbolRow extends Place {
  name: string;
  kind: "label" | "constant" | "define" | "option";
  value: number;
  uses: Use[];
}

export interface Output {
  name: string;
  bytes: Uint8Array;
}

export interface AssembleOptions {
  /** What the source is called, also in its outputs' names; `source.szirpa` otherwise. */
  name?: string;
  /** The name of the records, and so of listing and array. */
  output?: string;
  /** Which outputs are made besides records and script. The array needs the listing. */
  listing?: boolean;
  array?: boolean;
  /** The symbol table: in the listing, or in `symbolTable` where there is none. */
  symbols?: boolean;
  /** Debug records after the records. */
  debug?: boolean;
  /** The assembler's own warnings in the listing. */
  listWarnings?: boolean;
  /** Names that are defined, as 0. */
  define?: string[];
  compatibility?: ("nocase" | "nopure" | "nonative")[];
  /** Warnings that are not shown, that are errors ("all" of them), that are not shown otherwise. */
  allow?: string[];
  deny?: string[];
  warn?: string[];
  /** A warning makes the status 1. */
  strict?: boolean;
}

export interface Assembly {
  /** 0: all is well, 1: errors, 2: not enough memory, or names that can't be used. */
  status: 0 | 1 | 2;
  errors: number;
  warnings: number;
  /** In the order of the source. */
  diagnostics: Diagnostic[];
  lines: Line[];
  symbols: SymbolRow[];
  /** As it is printed; empty unless it was asked for. */
  symbolTable: string;
  /** Those that were made: after errors there is no other than the listing. */
  outputs: { records?: Output; listing?: Output; array?: Output; script?: Output };
}

/** Addresses are numbers, or texts as "$1C"; ranges are texts as "$20-$2F", the last one included. */
export interface DisassembleOptions {
  /** Found out where it is not given. */
  format?: "records" | "image" | "script" | "array";
  /** Of the first byte, for plain bytes and arrays, which have no addresses. */
  base?: number | string;
  /** Where code begins. */
  code?: (number | string)[];
  data?: string[];
  /** Texts. */
  string?: string[];
  /** Addresses of code. */
  table?: string[];
  /** Names of addresses, as "start=$10". */
  label?: string[];
  /** More of these hints, one a line, as `hints` of an earlier result. */
  hints?: string;
  /** Names from a symbol table, as the assembler prints it. */
  symbolTable?: string;
  /** Comments with address and bytes, and with the uses of labels. */
  bytes?: boolean;
  xref?: boolean;
}

export interface Fault extends Place {
  input: "program" | "hints" | "symbolTable";
  id: string;
  message: string;
}

/** Either there are faults, or there is all the rest. */
export interface Disassembly {
  faults: Fault[];
  source?: string;
  /** Empty: the source assembles to the same bytes at the same addresses. */
  difference?: string;
  /** All that was found, as hints that bring it back. */
  hints?: string;
  /** The flow, in the language of Graphviz. */
  graph?: string;
}

export interface ServerOptions {
  /** The address of the page that explains diagnostics. */
  pages?: string;
}

/** The language server. It takes and gives messages of the protocol as objects. */
export interface Server {
  send(message: object | string): void;
  // What a message holds is the protocol's matter.
  onmessage: ((message: any) => void) | null;
  /** It can't go on: there is not enough memory. */
  onerror: ((error: Error) => void) | null;
  close(): void;
}

/** Each call is over when it returns. One that fails throws, and the next one works again. */
export interface Assembler {
  assemble(source: Content, options?: AssembleOptions): Assembly;
  disassemble(program: Content, options?: DisassembleOptions): Disassembly;
  server(options?: ServerOptions): Server;
}

export function load(from?: ModuleSource | Promise<ModuleSource>): Promise<Assembler>;
export function assemble(source: Content, options?: AssembleOptions): Promise<Assembly>;
export function disassemble(
  program: Content,
  options?: DisassembleOptions,
): Promise<Disassembly>;
export function server(options?: ServerOptions): Promise<Server>;
