// Messages while the server works, texts as messages, answers within the listener, the end.
import { load } from "hxzirpa";

const zirpa = await load();
const server = zirpa.server({ pages: "https://example.org/pages" });
const send = (method, params, id) => server.send({ jsonrpc: "2.0", id, method, params });
const uri = "untitled:prog";

server.onmessage = ({ id, method, params, result }) => {
  if (id === 1) {
    send("initialized", {});
    send("textDocument/didOpen", {
      textDocument: { uri, languageId: "szirpa", version: 1, text: " ORG 0\n CLRX\n" },
    });
  } else if (method === "textDocument/publishDiagnostics") {
    console.log(params.diagnostics[0].code, params.diagnostics[0].codeDescription.href);
    server.send(JSON.stringify({ jsonrpc: "2.0", id: 2, method: "shutdown" }));
  } else if (id === 2) {
    console.log(result);
    server.close();
    try {
      send("exit");
    } catch (error) {
      console.log(error.message);
    }
  }
};
send("initialize", { capabilities: { textDocument: { publishDiagnostics: { codeDescriptionSupport: true } } } }, 1);
