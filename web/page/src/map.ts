// The 256 addresses: what a byte is, and from which line it comes.

import { element } from "./markdown";
import type { Assembly, Line } from "hxzirpa";

const SIZE = 256;
const COLUMNS = 16;

type Kind = "free" | "code" | "data" | "reserved" | "twice";

interface Cell {
  kind: Kind;
  byte: number;
  line: number;
  names: string[];
}

const WORDS: Record<Kind, string> = {
  free: "free", code: "code", data: "data", reserved: "reserved", twice: "written twice",
};

export function hex(value: number): string {
  return value.toString(16).toUpperCase().padStart(2, "0");
}

function emptyCells(): Cell[] {
  return Array.from({ length: SIZE }, () => ({ kind: "free", byte: 0, line: 0, names: [] }));
}

function put(cells: Cell[], { address, size, bytes, kind, line }: Line): number {
  const own: Kind = kind === "instruction" ? "code" : bytes.length > 0 ? "data" : "reserved";
  for (let index = 0; index < Math.min(size, SIZE - address); ++index) {
    const cell = cells[address + index];
    cell.kind = cell.kind === "free" ? own : "twice";
    cell.byte = bytes[index] ?? 0;
    cell.line = line;
  }
  return Math.max(address + size - Math.max(address, SIZE), 0);
}

function cellsOf(assembly: Assembly): { cells: Cell[]; beyond: number } {
  const cells = emptyCells();
  let beyond = 0;
  for (const line of assembly.lines) {
    beyond += line.size > 0 ? put(cells, line) : 0;
  }
  for (const { kind, name, value } of assembly.symbols) {
    if (kind === "label") {
      cells[value]?.names.push(name);
    }
  }
  return { cells, beyond };
}

export class MemoryMap {
  private cells = emptyCells();
  private readonly buttons: HTMLElement[] = [];
  private readonly legend = document.getElementById("legend")!;
  private readonly details = document.getElementById("details")!;
  private place = 0;
  private line = 0;

  constructor(private readonly goTo: (line: number) => void, private readonly leave: () => void) {
    const table = document.getElementById("map")!;
    const digits = Array.from({ length: COLUMNS }, (_each, column) => column.toString(16).toUpperCase());
    const head = digits.map((digit) => element("th", { scope: "col" }, digit));
    table.append(element("tr", {}, element("td"), ...head));
    for (const digit of digits) {
      table.append(element("tr", {}, element("th", { scope: "row" }, `${digit}0`), ...this.row()));
    }
    table.addEventListener("keydown", (event) => this.move(event));
    table.addEventListener("click", ({ target }) => this.follow(this.addressOf(target)));
    for (const event of ["pointerover", "focusin"]) {
      table.addEventListener(event, ({ target }) => this.describe(this.addressOf(target)));
    }
  }

  private row(): HTMLElement[] {
    return Array.from({ length: COLUMNS }, () => {
      const tabindex = this.buttons.length === 0 ? "0" : "-1";
      const button = element("button", { type: "button", tabindex });
      button.dataset.address = String(this.buttons.length);
      this.buttons.push(button);
      return element("td", {}, button);
    });
  }

  private addressOf(target: EventTarget | null): number | undefined {
    const address = (target as HTMLElement | null)?.closest<HTMLElement>("button")?.dataset.address;
    return address === undefined ? undefined : Number(address);
  }

  // ---- What is shown ----

  show(assembly: Assembly): void {
    const { cells, beyond } = cellsOf(assembly);
    this.cells = cells;
    cells.forEach((_cell, address) => this.draw(address));
    const counts = (Object.keys(WORDS) as Kind[]).flatMap((kind) => {
      const count = cells.filter((cell) => cell.kind === kind).length;
      return count > 0 ? [element("span", { class: kind }, element("b"), `${count} ${WORDS[kind]}`)] : [];
    });
    const more = beyond > 0 ? [element("span", { class: "beyond" }, `${beyond} above FF`)] : [];
    this.legend.replaceChildren(...counts, ...more);
    this.describe(this.place);
  }

  private draw(address: number): void {
    const cell = this.cells[address];
    const button = this.buttons[address];
    const isHere = cell.line !== 0 && cell.line === this.line;
    const look = `${cell.kind}${cell.names.length > 0 ? " named" : ""}${isHere ? " here" : ""}`;
    const text = cell.kind === "free" ? "·" : cell.kind === "reserved" ? "–" : hex(cell.byte);
    if (button.className !== look) {
      button.className = look;
    }
    if (button.textContent !== text) {
      button.textContent = text;
    }
    const label = this.textOf(address);
    if (button.getAttribute("aria-label") !== label) {
      button.setAttribute("aria-label", label);
    }
  }

  private textOf(address: number): string {
    const { kind, byte, line, names } = this.cells[address];
    const value = kind === "free" || kind === "reserved" ? "" : ` ${hex(byte)}`;
    const name = names.length > 0 ? `, ${names.join(", ")}` : "";
    return `$${hex(address)}:${value} ${WORDS[kind]}${name}${line > 0 ? `, line ${line}` : ""}`;
  }

  private describe(address: number | undefined): void {
    if (address !== undefined) {
      this.details.textContent = this.textOf(address);
    }
  }

  // The bytes of the line with the cursor.
  mark(line: number): void {
    this.line = line;
    this.cells.forEach((_cell, address) => this.draw(address));
    const first = this.cells.findIndex((cell) => line !== 0 && cell.line === line);
    if (first >= 0) {
      this.makeReachable(first);
    }
  }

  // ---- Ways ----

  // Of all cells one is reached by Tab, the others from there by arrows.
  private makeReachable(address: number): void {
    this.buttons[this.place].tabIndex = -1;
    this.place = address;
    this.buttons[address].tabIndex = 0;
  }

  focus(): void {
    this.buttons[this.place].focus();
  }

  private move(event: KeyboardEvent): void {
    if (event.key === "F6") {
      this.leave();
    }
    const column = this.place % COLUMNS;
    const steps: Record<string, number> = {
      ArrowLeft: -1, ArrowRight: 1, ArrowUp: -COLUMNS, ArrowDown: COLUMNS,
      Home: -column, End: COLUMNS - 1 - column,
    };
    const step = steps[event.key];
    if (step !== undefined && this.buttons[this.place + step]) {
      event.preventDefault();
      this.makeReachable(this.place + step);
      this.buttons[this.place].focus();
    }
  }

  private follow(address: number | undefined): void {
    if (address !== undefined) {
      this.makeReachable(address);
      const { line } = this.cells[address];
      if (line > 0) {
        this.goTo(line);
      }
    }
  }
}
