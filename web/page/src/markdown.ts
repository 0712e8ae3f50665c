// What the server writes for a hover, as elements. Nothing is ever read as HTML: names and texts of a
// source become text and nothing else.

export function element<Name extends keyof HTMLElementTagNameMap>(
  name: Name, attributes: Record<string, string> = {}, ...children: (Node | string)[]
): HTMLElementTagNameMap[Name] {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    made.setAttribute(key, value);
  }
  made.append(...children);
  return made;
}

const INLINE = /(`` .*? ``|`[^`]*`|\*\*.+?\*\*)/;

function inline(text: string): (Node | string)[] {
  return text.split(INLINE).map((piece, index) => {
    if (index % 2 === 0) {
      return piece;
    }
    if (piece.startsWith("**")) {
      return element("strong", {}, ...inline(piece.slice(2, -2)));
    }
    return element("code", {}, piece.startsWith("`` ") ? piece.slice(3, -3) : piece.slice(1, -1));
  });
}

function table(rows: string[]): HTMLElement {
  const cells = (row: string, name: "th" | "td") =>
    row.slice(1, -1).split("|").map((cell) => element(name, {}, ...inline(cell.trim())));
  const [head, , ...body] = rows;
  return element(
    "table", {},
    element("tr", {}, ...cells(head, "th")),
    ...body.map((row) => element("tr", {}, ...cells(row, "td"))),
  );
}

function block(text: string): HTMLElement {
  const lines = text.trim().split("\n");
  if (lines[0].startsWith("```")) {
    return element("pre", {}, lines.slice(1, -1).join("\n"));
  }
  if (lines[0].startsWith("|")) {
    return table(lines);
  }
  return lines[0] === "---" ? element("hr") : element("p", {}, ...inline(lines.join(" ")));
}

export function rendered(markdown: string): HTMLElement {
  const blocks = markdown.split(/(```[^]*?```)|\n\n/).filter((each) => each?.trim());
  return element("div", { class: "cm-hover" }, ...blocks.map(block));
}
