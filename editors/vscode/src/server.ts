import { parentPort } from "node:worker_threads";
import { type Port, serveOn } from "./serve";

serveOn(parentPort as unknown as Port);
