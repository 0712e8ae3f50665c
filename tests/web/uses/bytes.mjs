// Sources and outputs are bytes, also those that are no text.
import { assemble } from "hxzirpa";

const source = Uint8Array.of(...Buffer.from(' ORG 0\n FCS "'), 0xff, 0xfe, ...Buffer.from('"\n'));
for (const content of [source, source.buffer, new DataView(source.buffer)]) {
  const { outputs, lines } = await assemble(content, { listing: true });
  const listed = Buffer.from(outputs.listing.bytes);
  console.log(lines[1].bytes, listed.includes(source.subarray(8, 15)));
}
