import { type Port, serveOn } from "./serve";

serveOn(globalThis as unknown as Port);
