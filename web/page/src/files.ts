// Files from outside: a source is taken as it is, a program is taken apart.

import { fileName } from "./options";

export interface Taken {
  name: string;
  bytes: Uint8Array;
  isProgram: boolean;
}

const MOST_BYTES = 1 << 20;
const PROGRAM = /\.(s19|s28|s37|srec?|mot|hex|fmem|bin|c)$/i;

async function take(file: File): Promise<Taken> {
  if (file.size > MOST_BYTES) {
    throw new Error(`${file.name} is larger than a mebibyte.`);
  }
  const bytes = new Uint8Array(await file.arrayBuffer());
  const isRecord = /^S[0-9][0-9A-F]{2}/.test(new TextDecoder().decode(bytes.subarray(0, 4)));
  return { name: fileName(file.name), bytes, isProgram: isRecord || PROGRAM.test(file.name) };
}

export function onFile(use: (taken: Promise<Taken>) => void): void {
  const input = document.getElementById("file") as HTMLInputElement;
  document.getElementById("open")!.addEventListener("click", () => input.click());
  input.addEventListener("change", () => {
    if (input.files?.[0]) {
      use(take(input.files[0]));
      input.value = "";
    }
  });
  // Ahead of the editor, which would put the text of a file where it has been dropped.
  const { body } = document;
  const hasFile = (event: DragEvent) => event.dataTransfer?.types.includes("Files") ?? false;
  window.addEventListener("dragover", (event) => {
    if (hasFile(event)) {
      event.preventDefault();
      body.classList.add("dropping");
    }
  }, true);
  window.addEventListener("dragleave", ({ relatedTarget }) => {
    body.classList.toggle("dropping", relatedTarget !== null && body.classList.contains("dropping"));
  }, true);
  window.addEventListener("drop", (event) => {
    body.classList.remove("dropping");
    const file = event.dataTransfer?.files[0];
    if (file) {
      event.preventDefault();
      event.stopPropagation();
      use(take(file));
    }
  }, true);
}
