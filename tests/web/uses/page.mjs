// In a page and in its worker: what each has made, and what the server in the worker says.
import { assemble } from "./package/index.mjs";

const tell = (text) => fetch("/told", { method: "POST", body: String(text) });

assemble(" ORG 0\n CLRA\n").then(({ lines }) => tell(`page: ${lines[1].bytes}`), tell);
const worker = new Worker("./pageWorker.mjs", { type: "module" });
worker.onmessage = ({ data }) => tell(data);
