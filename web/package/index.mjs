// The package in browsers and their workers: the module lies beside this file.
import { packageOf } from "./core.mjs";

const home = new URL("./hxzirpa.wasm", import.meta.url);

export const { load, assemble, disassemble, server } = packageOf(home, (address) => fetch(address));
