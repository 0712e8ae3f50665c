// Bundles the page and its workers into the directory out.
"use strict";

const esbuild = require("esbuild-wasm");
const path = require("path");

const own = (name) => () => ({ path: path.join(__dirname, name) });
const inPlaceOfNode = {
  name: "in-place-of-node",
  setup(build) {
    build.onResolve({ filter: /^vscode-languageclient\/node$/ }, own("client.ts"));
    build.onResolve({ filter: /^node:/ }, own("system.ts"));
    build.onResolve({ filter: /^extension$/ }, own("../vscode/src/extension.ts"));
  },
};
const forTheWeb = {
  name: "for-the-web",
  setup: (build) => build.onResolve({ filter: /^extension$/ }, own("../vscode/src/browser.ts")),
};
const packages = path.join(__dirname, "node_modules", "@codingame");

function bundle(entryPoints, plugins) {
  return esbuild.build({
    entryPoints,
    bundle: true,
    format: "esm",
    outdir: path.join(__dirname, "out"),
    nodePaths: [path.join(__dirname, "node_modules")],
    plugins,
    logLevel: "error",
    // What is named by import.meta.url is asked for by that address.
    loader: { ".mp3": "empty", ".png": "file", ".svg": "file", ".ttf": "file" },
  });
}

async function build() {
  const main = path.join(__dirname, "main.ts");
  const workers = {
    "editor.worker": path.join(packages, "monaco-vscode-api", "workers", "editor.worker.js"),
    "textmate.worker": path.join(packages, "monaco-vscode-textmate-service-override", "worker.js"),
    "vscode/dist/browserServer": path.join(__dirname, "..", "vscode", "src", "browserServer.ts"),
  };
  await bundle({ main, ...workers }, [inPlaceOfNode]);
  await bundle({ web: main }, [forTheWeb]);
}

build().catch(() => process.exit(1));
