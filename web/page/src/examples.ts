// The project's examples, which the bundle holds.

import { examples } from "examples";

// What a first visit shows: short, and with code at its top.
export const FIRST = { name: "report", source: examples.report };

export function onExample(use: (name: string, source: string) => void): void {
  const choice = document.getElementById("examples") as HTMLSelectElement;
  for (const name of Object.keys(examples)) {
    choice.append(new Option(name, name));
  }
  choice.addEventListener("change", () => {
    use(choice.value, examples[choice.value]);
    choice.value = "";
  });
}
