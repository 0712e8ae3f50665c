import { assemble, disassemble, load, server, type Assembly, type Line } from "hxzirpa";

const result: Assembly = await assemble(" CLRA\n", { name: "a.szirpa", define: ["FAST"] });
const sizes: number[] = result.lines.map((line: Line) => line.size);
const records: Uint8Array | undefined = result.outputs.records?.bytes;
const source: string | undefined = (await disassemble(Uint8Array.of(5), { base: 0 })).source;
const status: 0 | 1 | 2 = (await load(Uint8Array.of())).assemble("").status;
(await server()).onmessage = (message) => console.log(message.id);
console.log(sizes, records, source, status);
