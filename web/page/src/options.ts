// The options as switches; each is known by the name of its control.

export interface Options {
  name: string;
  define: string[];
  nocase: boolean;
  nopure: boolean;
  unused: boolean;
  debug: boolean;
  warnings: boolean;
  table: boolean;
  hints: boolean;
}

export const FLAGS = ["nocase", "nopure", "unused", "debug", "warnings", "table", "hints"] as const;
const LONGEST_NAME = 64;

const form = document.getElementById("options") as HTMLFormElement;

function control(name: keyof Options): HTMLInputElement {
  return form.elements.namedItem(name) as HTMLInputElement;
}

export function options(): Options {
  const flags = Object.fromEntries(FLAGS.map((flag) => [flag, control(flag).checked]));
  return {
    ...(flags as Pick<Options, (typeof FLAGS)[number]>),
    name: fileName(control("name").value),
    define: control("define").value.split(/[\s,]+/).filter((word) => word !== ""),
  };
}

// Without a directory and without an extension.
export function fileName(name: string): string {
  const base = name.replace(/^.*[/\\]/, "").replace(/\.[^.]*$/, "").replace(/[^\w. -]/g, "_");
  return base.slice(0, LONGEST_NAME).trim() || "source";
}

// Whatever comes from a link or another session is looked at before it is taken.
export function takeOptions(given: unknown): void {
  const found = (given ?? {}) as Partial<Record<keyof Options, unknown>>;
  for (const flag of FLAGS) {
    control(flag).checked = found[flag] === true;
  }
  const define = Array.isArray(found.define) ? found.define : [];
  control("define").value = define.filter((word) => typeof word === "string").join(" ");
  control("name").value = fileName(typeof found.name === "string" ? found.name : "");
}

export function nameSource(name: string): void {
  control("name").value = fileName(name);
}

// What the language server and the assembler are given alike.
function project({ define, nocase, nopure, unused }: Options): object {
  const compatibility = [...(nocase ? ["nocase"] : []), ...(nopure ? ["nopure"] : [])];
  return { define, compatibility, warn: unused ? ["unused-label"] : [] };
}

export function serverSettings(): object {
  return project(options());
}

export function assemblyOptions(): object {
  const all = options();
  return {
    ...project(all), name: `${all.name}.szirpa`, listing: true, array: true, symbols: all.table,
    debug: all.debug, listWarnings: all.warnings,
  };
}

export function onOptions(listener: () => void): void {
  form.addEventListener("input", listener);
  form.addEventListener("submit", (event) => event.preventDefault());
}
