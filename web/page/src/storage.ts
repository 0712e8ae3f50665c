// What stays on this machine between visits: the source with its options, and the look. A browser may
// forbid it.

export function read(key: "source" | "look"): string | null {
  try {
    return localStorage.getItem(`hxzirpa.${key}`);
  } catch {
    return null;
  }
}

export function write(key: "source" | "look", value: string): void {
  try {
    localStorage.setItem(`hxzirpa.${key}`, value);
  } catch {
    // The page works without.
  }
}
