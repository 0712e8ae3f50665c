// The table of names: values, where they are defined, how often they are used.

import { hex } from "./map";
import { element } from "./markdown";
import type { Assembly, SymbolRow } from "hxzirpa";

type Order = "name" | "value" | "line";

const COMPARE: Record<Order, (one: SymbolRow, other: SymbolRow) => number> = {
  name: (one, other) => one.name.localeCompare(other.name, "en"),
  value: (one, other) => one.value - other.value,
  line: (one, other) => (one.line ?? 0) - (other.line ?? 0),
};

export class Names {
  private names: SymbolRow[] = [];
  private order: Order = "line";
  private readonly rows = document.querySelector("#names tbody")!;

  constructor(private readonly goTo: (line: number) => void) {
    for (const button of document.querySelectorAll<HTMLElement>("#names th button")) {
      button.addEventListener("click", () => this.sort(button.dataset.order as Order));
    }
  }

  private sort(order: Order): void {
    this.order = order;
    for (const button of document.querySelectorAll<HTMLElement>("#names th button")) {
      const isSorted = button.dataset.order === order;
      button.closest("th")!.setAttribute("aria-sort", isSorted ? "ascending" : "none");
    }
    this.draw();
  }

  show(assembly: Assembly): void {
    this.names = assembly.symbols;
    this.draw();
  }

  private draw(): void {
    const sorted = [...this.names].sort(COMPARE[this.order]);
    this.rows.replaceChildren(...sorted.map((name) => this.row(name)));
  }

  private row({ name, kind, value, line, uses }: SymbolRow): HTMLElement {
    const place = element("td");
    if (line !== undefined) {
      const button = element("button", { type: "button", class: "place" }, String(line));
      button.setAttribute("aria-label", `${name}, line ${line}`);
      button.addEventListener("click", () => this.goTo(line));
      place.append(button);
    }
    const shown = value < 0 ? `-$${hex(-value)}` : `$${hex(value)}`;
    return element(
      "tr", {}, element("th", { scope: "row" }, name), element("td", {}, kind),
      element("td", { class: "number" }, shown), element("td", { class: "number" }, String(value)), place,
      element("td", { class: "number" }, String(uses.length)),
    );
  }
}
