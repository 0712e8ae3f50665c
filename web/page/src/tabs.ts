// The panes beside the source. Where there is no room beside it, the source is one of them.

const tabs = [...document.querySelectorAll<HTMLButtonElement>("[role=tab]")];
const wide = matchMedia("(min-width: 56rem)");
let chosen = "listing";
const whenShown: ((pane: string) => void)[] = [];

export function onPane(listener: (pane: string) => void): void {
  whenShown.push(listener);
}

// The pane beside the source, or the only one.
export function paneShown(): string {
  return chosen;
}

function isThere(tab: HTMLElement): boolean {
  return !(wide.matches && tab.dataset.pane === "source");
}

export function showPane(pane: string): void {
  chosen = pane;
  for (const tab of tabs) {
    const isChosen = tab.dataset.pane === pane;
    tab.hidden = !isThere(tab);
    tab.setAttribute("aria-selected", String(isChosen));
    tab.tabIndex = isChosen ? 0 : -1;
  }
  for (const panel of document.querySelectorAll<HTMLElement>("[role=tabpanel]")) {
    panel.hidden = panel.id !== `pane-${pane}` && !(wide.matches && panel.id === "pane-source");
  }
  whenShown.forEach((listener) => listener(pane));
}

// Where the source is hidden, a way that leads to it shows it.
export function showSource(): void {
  if (!wide.matches) {
    showPane("source");
  }
}

function fit(): void {
  showPane(wide.matches && chosen === "source" ? "listing" : chosen);
}

export function startTabs(): void {
  for (const tab of tabs) {
    tab.addEventListener("click", () => showPane(tab.dataset.pane!));
    tab.addEventListener("keydown", ({ key }) => {
      const there = tabs.filter(isThere);
      const step = key === "ArrowRight" ? 1 : key === "ArrowLeft" ? there.length - 1 : 0;
      const next = there[(there.indexOf(tab) + step) % there.length];
      if (step !== 0) {
        showPane(next.dataset.pane!);
        next.focus();
      }
    });
  }
  wide.addEventListener("change", fit);
  chosen = wide.matches ? "listing" : "source";
  fit();
}
