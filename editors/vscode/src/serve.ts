// The language server in a thread or worker. The first message is the module; all others are those of
// the protocol, and one more, which assembles for files.

import { packageOf } from "../hxzirpa/core.mjs";
import type { Assembler, AssembleOptions, Server } from "../hxzirpa/index.mjs";

export interface Port {
  postMessage(message: unknown): void;
  onmessage: ((event: { data: any }) => void) | null;
}

interface Request {
  id: number;
  params: { source: Uint8Array; options: AssembleOptions };
}

function answerTo(assembler: Assembler, { id, params }: Request): object {
  try {
    return { jsonrpc: "2.0", id, result: assembler.assemble(params.source, params.options) };
  } catch (error) {
    return { jsonrpc: "2.0", id, error: { code: -32603, message: String(error) } };
  }
}

async function startServer(assembler: Assembler, port: Port): Promise<(message: any) => void> {
  const server: Server = assembler.server();
  server.onmessage = (message) => port.postMessage(message);
  return (message) => {
    if (message.method === "zirpa/assemble") {
      port.postMessage(answerTo(assembler, message));
    } else {
      server.send(message);
    }
  };
}

export function serveOn(port: Port): void {
  const { load } = packageOf(undefined, fetch);
  const waiting: unknown[] = [];
  port.onmessage = async ({ data: module }) => {
    port.onmessage = ({ data }) => waiting.push(data);
    const take = await startServer(await load(module), port);
    port.onmessage = ({ data }) => take(data);
    waiting.forEach(take);
  };
}
