// Diagnostics: under the text, and as a list with their fixes.

import { setDiagnostics, type Action, type Diagnostic } from "@codemirror/lint";
import type { EditorView } from "@codemirror/view";
import { apply, editsOf } from "./assistance";
import type { Client } from "./client";
import { element } from "./markdown";
import { positionOf, spanOf, UNNECESSARY, type CodeAction, type ServerDiagnostic } from "./protocol";

const SEVERITIES = ["hint", "error", "warning", "info", "hint"] as const;
// More are not listed: nobody reads them, and each costs time after each key.
const MOST_LISTED = 200;

interface Problem {
  diagnostic: ServerDiagnostic;
  fixes: CodeAction[];
}

function keyOf({ range, code, message }: ServerDiagnostic): string {
  return JSON.stringify([range, code, message]);
}

function explanation({ code, codeDescription }: ServerDiagnostic): HTMLElement | undefined {
  const address = codeDescription && new URL(codeDescription.href, document.baseURI);
  // Only this site's own page is linked to.
  if (!code || address?.origin !== location.origin) {
    return undefined;
  }
  return element("a", { href: address.href, target: "_blank", rel: "noopener" }, code);
}

export class Problems {
  private problems: Problem[] = [];
  private readonly list = document.getElementById("problems")!;

  constructor(private readonly view: EditorView, private readonly client: Client,
              private readonly say: (text: string) => void) {}

  // Problems and fixes are shown together: a list that changes twice after each key is hard to read.
  async take(diagnostics: ServerDiagnostic[]): Promise<void> {
    const fixes = diagnostics.length > 0 ? await this.fixes() : new Map<string, CodeAction[]>();
    this.show(diagnostics.map((diagnostic) => ({
      diagnostic, fixes: fixes.get(keyOf(diagnostic)) ?? [],
    })));
  }

  private async fixes(): Promise<Map<string, CodeAction[]>> {
    const { doc } = this.view.state;
    const range = { start: { line: 0, character: 0 }, end: positionOf(doc, doc.length) };
    const actions = await this.client.ask<CodeAction[]>("codeAction", { range, context: { diagnostics: [] } });
    const found = new Map<string, CodeAction[]>();
    for (const action of actions) {
      const key = keyOf(action.diagnostics![0]);
      found.set(key, [...(found.get(key) ?? []), action]);
    }
    return found;
  }

  private show(problems: Problem[]): void {
    this.problems = problems;
    this.view.dispatch(setDiagnostics(this.view.state, problems.map((each) => this.underlined(each))));
    const listed = problems.filter(({ diagnostic }) => diagnostic.severity <= 2);
    this.list.replaceChildren(...listed.slice(0, MOST_LISTED).map((each) => this.item(each)));
    if (listed.length > MOST_LISTED) {
      this.list.append(element("li", {}, `and ${listed.length - MOST_LISTED} more`));
    }
  }

  // ---- Fixes ----

  private carryOut(fix: CodeAction): void {
    apply(this.view, editsOf(fix.edit));
    this.say(fix.title);
    this.view.focus();
  }

  // The first fix of the line with the cursor.
  fixHere(): boolean {
    const { main } = this.view.state.selection;
    const line = this.view.state.doc.lineAt(main.head).number - 1;
    const found = this.problems.find(
      ({ diagnostic, fixes }) => fixes.length > 0 && diagnostic.range.start.line === line,
    );
    if (found) {
      this.carryOut(found.fixes[0]);
    } else {
      this.say("There is no fix for this line.");
    }
    return true;
  }

  // ---- Under the text ----

  private underlined({ diagnostic, fixes }: Problem): Diagnostic {
    return {
      ...spanOf(this.view.state.doc, diagnostic.range),
      severity: SEVERITIES[diagnostic.severity] ?? "hint",
      markClass: diagnostic.tags?.includes(UNNECESSARY) ? "cm-unnecessary" : undefined,
      message: diagnostic.message,
      renderMessage: () => this.message(diagnostic),
      actions: fixes.map((fix): Action => ({ name: fix.title, apply: () => this.carryOut(fix) })),
    };
  }

  private message(diagnostic: ServerDiagnostic): HTMLElement {
    const link = explanation(diagnostic);
    return element("span", {}, diagnostic.message, ...(link ? [" ", link] : []));
  }

  // ---- The list ----

  private item({ diagnostic, fixes }: Problem): HTMLElement {
    const severity = SEVERITIES[diagnostic.severity];
    const { line, character } = diagnostic.range.start;
    const short = `${line + 1}:${character + 1}`;
    const place = element("button", { type: "button", class: "place" }, short);
    place.setAttribute("aria-label", `${short}, line ${line + 1}, column ${character + 1}`);
    place.addEventListener("click", () => this.goTo(diagnostic));
    const buttons = fixes.map((fix) => {
      const button = element("button", { type: "button", class: "fix" }, fix.title);
      button.addEventListener("click", () => this.carryOut(fix));
      return button;
    });
    return element(
      "li", { class: severity }, place, element("strong", {}, severity), " ", this.message(diagnostic),
      ...(diagnostic.relatedInformation ?? []).map((note) =>
        element("span", { class: "note" }, `${note.message} (line ${note.location.range.start.line + 1})`),
      ),
      " ", ...buttons,
    );
  }

  private goTo(diagnostic: ServerDiagnostic): void {
    const { from } = spanOf(this.view.state.doc, diagnostic.range);
    this.view.dispatch({ selection: { anchor: from }, scrollIntoView: true });
    this.view.focus();
  }
}
