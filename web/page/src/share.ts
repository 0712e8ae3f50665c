// A link that holds the source: compressed, in the fragment, which no browser sends to a server.

export interface Shared {
  source: string;
  options?: unknown;
}

// A small link may hold a text that fills the memory.
const MOST_BYTES = 1 << 20;

const TOO_LARGE = "the source is too large for a link";

async function through(bytes: Uint8Array, stream: CompressionStream | DecompressionStream, most: number) {
  const reader = new Blob([bytes]).stream().pipeThrough(stream).getReader();
  const parts: Uint8Array[] = [];
  let size = 0;
  for (let next = await reader.read(); !next.done; next = await reader.read()) {
    size += next.value.length;
    if (size > most) {
      await reader.cancel();
      throw new Error(TOO_LARGE);
    }
    parts.push(next.value);
  }
  return new Uint8Array(await new Blob(parts).arrayBuffer());
}

function base64(bytes: Uint8Array): string {
  const text = Array.from(bytes, (byte) => String.fromCharCode(byte)).join("");
  return btoa(text).replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

function bytesOf(text: string): Uint8Array {
  return Uint8Array.from(atob(text.replaceAll("-", "+").replaceAll("_", "/")), (ch) => ch.charCodeAt(0));
}

export async function fragmentOf(shared: Shared): Promise<string> {
  const bytes = new TextEncoder().encode(JSON.stringify(shared));
  if (bytes.length > MOST_BYTES) {
    throw new Error(TOO_LARGE);
  }
  return `#${base64(await through(bytes, new CompressionStream("deflate-raw"), MOST_BYTES))}`;
}

export async function sharedIn(fragment: string): Promise<Shared> {
  const bytes = await through(bytesOf(fragment.slice(1)), new DecompressionStream("deflate-raw"), MOST_BYTES);
  return sharedOf(new TextDecoder("utf-8", { fatal: true }).decode(bytes));
}

// Whoever has made a link, or has changed what is kept here, may have written anything.
export function sharedOf(json: string): Shared {
  const found = JSON.parse(json);
  if (typeof found?.source !== "string") {
    throw new Error("there is no source in it");
  }
  return { source: found.source, options: found.options };
}
