// Light or dark, as the system has it or as it is chosen here.

import { read, write } from "./storage";

const LOOKS = ["auto", "light", "dark"];
const button = document.getElementById("look")!;
let look = "auto";

function take(found: string | null): void {
  look = found !== null && LOOKS.includes(found) ? found : "auto";
  document.documentElement.dataset.look = look;
  button.textContent = `◐ ${look[0].toUpperCase()}${look.slice(1)}`;
  button.setAttribute("aria-label", `Colours: ${look}`);
}

export function startLook(): void {
  take(read("look"));
  button.addEventListener("click", () => {
    take(LOOKS[(LOOKS.indexOf(look) + 1) % LOOKS.length]);
    write("look", look);
  });
}
