// A worker of node's loads the package; results are values that can be posted.
import { isMainThread, parentPort, Worker } from "node:worker_threads";
import { assemble } from "hxzirpa";

if (isMainThread) {
  const worker = new Worker(new URL(import.meta.url));
  worker.once("message", ({ outputs: { records } }) => {
    console.log(records.name, records.bytes.length);
  });
} else {
  parentPort.postMessage(await assemble(" ORG $10\n CLRA\n"));
}
