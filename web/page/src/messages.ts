// What the page and its worker send to each other.

import type { Assembly, Disassembly } from "hxzirpa";

export interface Calls {
  assemble: Assembly;
  disassemble: Disassembly;
}

// To the worker: a message of the language server's protocol, or a call.
export type Order =
  | { lsp: object }
  | { call: number; name: keyof Calls; input: string | Uint8Array; options: object };

// From the worker. What has failed can't go on: a new worker is needed.
export type Report =
  | { lsp: any }
  | { call: number; result: Calls[keyof Calls] }
  | { call: number; refused: string }
  | { failed: string };
