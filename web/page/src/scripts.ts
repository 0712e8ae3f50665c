// The page's policy lets a text become a script's address here alone, and HTML nowhere.

interface TrustedTypes {
  createPolicy(name: string, rules: { createScriptURL(address: string): string }): {
    createScriptURL(address: string): unknown;
  };
}

const { trustedTypes } = window as { trustedTypes?: TrustedTypes };
const policy = trustedTypes?.createPolicy("hxzirpa", { createScriptURL: (address) => address });

// The address of a script of the site.
export function scriptAt(name: "engine.js" | "offline.js"): string {
  const address = new URL(name, document.baseURI).href;
  return (policy?.createScriptURL(address) ?? address) as string;
}
