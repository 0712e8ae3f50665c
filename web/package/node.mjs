// The package in node, which doesn't fetch files.
import { readFile } from "node:fs/promises";
import { packageOf } from "./core.mjs";

const home = new URL("./hxzirpa.wasm", import.meta.url);

// A text is an address, as in browsers; a file's begins with "file:".
async function fetchModule(address) {
  const url = new URL(address);
  return url.protocol === "file:" ? readFile(url) : fetch(url);
}

export const { load, assemble, disassemble, server } = packageOf(home, fetchModule);
