// The worker: the assembler, the disassembler and the language server, apart from the page, so that the
// page answers whatever these do.

import { load, type Assembler, type Server } from "hxzirpa";
import type { Order, Report } from "../src/messages";

const scope = self as unknown as DedicatedWorkerGlobalScope;
const here = scope.location.href;

function report(message: Report): void {
  scope.postMessage(message);
}

function fail(error: unknown): void {
  report({ failed: error instanceof Error ? error.message : String(error) });
}

function call(assembler: Assembler, order: Extract<Order, { call: number }>): Report {
  try {
    return { call: order.call, result: assembler[order.name](order.input, order.options) };
  } catch (error) {
    return { call: order.call, refused: (error as Error).message };
  }
}

function carryOut(assembler: Assembler, server: Server, order: Order): void {
  if ("lsp" in order) {
    server.send(order.lsp);
  } else {
    report(call(assembler, order));
  }
}

const early: Order[] = [];
scope.onmessage = ({ data }: MessageEvent<Order>) => early.push(data);

load(new URL("hxzirpa.wasm", here)).then((assembler) => {
  const server = assembler.server({ pages: new URL("diagnostics.html", here).href });
  server.onmessage = (message) => report({ lsp: message });
  server.onerror = fail;
  scope.onmessage = ({ data }: MessageEvent<Order>) => carryOut(assembler, server, data);
  early.forEach((order) => carryOut(assembler, server, order));
}).catch(fail);
