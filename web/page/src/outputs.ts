// The outputs: a row each, to look at and to keep.

import { element } from "./markdown";

const MOST_SHOWN = 100_000;

export interface Kept {
  kind: string;
  name: string;
  bytes: Uint8Array;
}

const TITLES: Record<string, string> = {
  records: "S-records", listing: "Listing", array: "C array", script: "Simulator script",
  source: "Source",
};

function save({ name, bytes }: Kept): void {
  const address = URL.createObjectURL(new Blob([bytes], { type: "application/octet-stream" }));
  element("a", { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), 1000);
}

class Row {
  readonly item = element("li");
  private kept!: Kept;
  private readonly size = element("span", { class: "size" });
  private readonly name = element("code");
  private readonly text = element("pre", { tabindex: "0" });
  private readonly shown = element("details");

  constructor(kind: string) {
    const title = TITLES[kind] ?? kind;
    const button = element("button", { type: "button" }, "Download");
    button.setAttribute("aria-label", `Download: ${title}`);
    button.addEventListener("click", () => save(this.kept));
    this.text.setAttribute("aria-label", title);
    const summary = element("summary", {}, element("strong", {}, title), " ", this.name, " ", this.size);
    this.shown.append(summary, this.text);
    this.shown.addEventListener("toggle", () => this.fill());
    this.item.append(this.shown, button);
  }

  show(kept: Kept): void {
    this.kept = kept;
    this.name.textContent = kept.name;
    this.size.textContent = `${kept.bytes.length.toLocaleString("en")} bytes`;
    this.fill();
  }

  private fill(): void {
    if (this.shown.open) {
      const text = new TextDecoder().decode(this.kept.bytes.subarray(0, MOST_SHOWN));
      this.text.textContent = text + (this.kept.bytes.length > MOST_SHOWN ? "\n…" : "");
    }
  }
}

export class Outputs {
  private readonly list = document.getElementById("outputs")!;
  private readonly rows = new Map<string, Row>();
  private readonly note = element("li", { class: "note" }, "After errors the listing is the only output.");

  show(all: Kept[], hasErrors: boolean): void {
    const items = all.map((kept) => {
      const row = this.rows.get(kept.kind) ?? new Row(kept.kind);
      this.rows.set(kept.kind, row);
      row.show(kept);
      return row.item;
    });
    // An element that stays where it is keeps the focus.
    const wanted = hasErrors ? [...items, this.note] : items;
    const there = [...this.list.children];
    if (there.length !== wanted.length || there.some((item, index) => item !== wanted[index])) {
      this.list.replaceChildren(...wanted);
    }
  }
}
