// For require(): the same functions, which give promises anyway.
"use strict";

const functions = import("./node.mjs");
functions.catch(() => {}); // whoever calls one of them is told

for (const name of ["load", "assemble", "disassemble", "server"]) {
  exports[name] = async (...values) => (await functions)[name](...values);
}
