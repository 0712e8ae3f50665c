// How the editor and the listing look. They stand in shadow trees, since only there a style sheet is made
// without a style element, which the page's policy forbids; colours reach them as custom properties.

import { EditorView } from "@codemirror/view";

export function shadowOf(id: string): ShadowRoot {
  return document.getElementById(id)!.attachShadow({ mode: "open" });
}

export const appearance = EditorView.theme({
  "&": { height: "100%", fontSize: "var(--code-size)", color: "var(--ink)", background: "var(--paper)" },
  "&.cm-focused": { outline: "none" },
  ".cm-scroller": { fontFamily: "var(--mono)", lineHeight: "var(--code-line)", overflow: "auto" },
  ".cm-content": { caretColor: "var(--accent)", padding: "6px 0" },
  ".cm-gutters": { background: "var(--paper)", color: "var(--faint)", border: "none" },
  ".cm-lineNumbers .cm-gutterElement": { padding: "0 10px 0 8px", minWidth: "2.5em" },
  ".cm-activeLine": { background: "var(--line)" },
  ".cm-activeLineGutter": { background: "var(--line)", color: "var(--ink)" },
  ".cm-shown": { background: "var(--line)" },
  "&.cm-focused .cm-shown": { background: "var(--line)" },
  ".cm-message": { color: "var(--error)" },
  ".cm-header": { color: "var(--faint)" },
  ".cm-bytes": { color: "var(--number)" },
  ".cm-number": { color: "var(--faint)" },
  ".cm-hint": { color: "var(--quiet)", fontSize: "0.85em", lineHeight: "1", padding: "0 0 0 1ch" },
  ".cm-hint.cm-bytes": { color: "var(--number)", padding: "0 0 0 3ch" },
  ".cm-unnecessary": { opacity: "0.6" },
  ".cm-lintRange-error": { background: "none", textDecoration: "underline wavy var(--error) 1px" },
  ".cm-lintRange-warning": { background: "none", textDecoration: "underline wavy var(--warning) 1px" },
  ".cm-lintRange-hint": { background: "none" },
  ".cm-tooltip": {
    background: "var(--raised)", color: "var(--ink)", border: "1px solid var(--edge)", borderRadius: "6px",
    boxShadow: "0 4px 16px var(--shade)", fontFamily: "var(--sans)", fontSize: "13px",
    maxWidth: "min(36rem, 90vw)",
  },
  ".cm-tooltip.cm-tooltip-autocomplete > ul": { fontFamily: "var(--mono)", maxHeight: "14em" },
  ".cm-tooltip.cm-tooltip-autocomplete > ul > li": { padding: "3px 8px" },
  ".cm-tooltip.cm-tooltip-autocomplete > ul > li[aria-selected]": {
    background: "var(--accent)", color: "var(--on-accent)",
  },
  ".cm-completionDetail": { color: "var(--quiet)", fontStyle: "normal" },
  "li[aria-selected] .cm-completionDetail": { color: "inherit" },
  ".cm-completionMatchedText": { textDecoration: "none", fontWeight: "700" },
  ".cm-tooltip.cm-completionInfo": { padding: "6px 10px" },
  ".cm-tooltip a": { color: "var(--accent)" },
  ".cm-diagnostic": { padding: "8px 12px", margin: "0" },
  ".cm-diagnostic-error": { borderLeft: "4px solid var(--error)" },
  ".cm-diagnostic-warning": { borderLeft: "4px solid var(--warning)" },
  ".cm-diagnostic-hint": { borderLeft: "4px solid var(--edge)" },
  ".cm-diagnosticAction": {
    background: "var(--accent)", color: "var(--on-accent)", borderRadius: "4px", padding: "3px 8px",
    margin: "0 0 0 8px", font: "inherit",
  },
  ".cm-hover": { padding: "8px 12px", lineHeight: "1.45", maxHeight: "20em", overflow: "auto" },
  ".cm-hover p": { margin: "0 0 6px" },
  ".cm-hover :last-child": { marginBottom: "0" },
  ".cm-hover code, .cm-hover pre": { fontFamily: "var(--mono)" },
  ".cm-hover pre": { margin: "0 0 6px" },
  ".cm-hover table": { borderCollapse: "collapse" },
  ".cm-hover th, .cm-hover td": { textAlign: "left", padding: "1px 14px 1px 0" },
  ".cm-hover hr": { border: "none", borderTop: "1px solid var(--edge)", margin: "6px 0" },
  ".cm-panels": { background: "var(--raised)", color: "var(--ink)", fontFamily: "var(--sans)" },
  ".cm-panels.cm-panels-bottom": { borderTop: "1px solid var(--edge)" },
  ".cm-panel": { padding: "6px 8px" },
  ".cm-textfield": {
    background: "var(--paper)", color: "var(--ink)", border: "1px solid var(--edge)", borderRadius: "4px",
    padding: "4px 6px", fontSize: "13px",
  },
  ".cm-button": {
    background: "var(--paper)", color: "var(--ink)", border: "1px solid var(--edge)", borderRadius: "4px",
    padding: "4px 8px", fontSize: "13px",
  },
  ".cm-searchMatch": { background: "var(--found)" },
  ".cm-searchMatch-selected": { outline: "1px solid var(--accent)" },
  ".cm-selectionMatch": { background: "var(--found)" },
});
