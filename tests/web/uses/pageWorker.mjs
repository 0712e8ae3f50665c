import { assemble, server } from "./package/index.mjs";

const tell = (text) => postMessage(String(text));

assemble(" ORG 0\n CLRA\n").then(({ lines }) => tell(`worker: ${lines[1].bytes}`), tell);
server().then((zirpa) => {
  zirpa.onmessage = ({ result }) => tell(`server: ${"capabilities" in result}`);
  zirpa.send({ jsonrpc: "2.0", id: 1, method: "initialize", params: { capabilities: {} } });
}, tell);
