// Calls that run out of memory, calls after them, and how many instances that has taken so far.
import { load } from "hxzirpa";

let instances = 0;
const Instance = WebAssembly.Instance;
WebAssembly.Instance = class extends Instance {
  constructor(...values) {
    super(...values);
    instances += 1;
  }
};

const zirpa = await load();
const told = (work) => {
  try {
    return work();
  } catch (error) {
    return `${error.constructor.name}: ${error.message.split(";")[0]}`;
  }
};
const good = () => zirpa.assemble(" ORG 0\n CLRA\n").status;

const endless = " ORG 0\n" + " RMB 1048576\n".repeat(100);
console.log(told(() => zirpa.assemble(endless).diagnostics[0].message), good(), instances);
console.log(told(() => zirpa.assemble(new Uint8Array(300_000_000))), good(), instances);
console.log(told(() => zirpa.disassemble(new Uint8Array(300_000_000))), good(), instances);
console.log(told(() => zirpa.assemble("", { listin: true })), good(), instances);
console.log(told(() => zirpa.assemble(5)), good(), instances);
