import type { assemble, disassemble, load, ModuleSource, server } from "./index.mjs";

/** The package's functions for a module that lies elsewhere and is fetched in another way. */
export function packageOf(
  home: ModuleSource | undefined,
  fetchModule: (address: string | URL) => Promise<BufferSource | Response>,
): {
  load: typeof load;
  assemble: typeof assemble;
  disassemble: typeof disassemble;
  server: typeof server;
};
