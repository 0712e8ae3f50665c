// Bundles the page and its workers into the directory out.
"use strict";

const esbuild = require("esbuild-wasm");
const path = require("path");

const inPlaceOfNode = {
  name: "in-place-of-node",
  setup(build) {
    const own = (name) => () => ({ path: path.join(__dirname, name) });
    build.onResolve({ filter: /^vscode-languageclient\/node$/ }, own("client.ts"));
    build.onResolve({ filter: /^node:/ }, own("system.ts"));
  },
};
const packages = path.join(__dirname, "node_modules", "@codingame");

esbuild
  .build({
    entryPoints: {
      main: path.join(__dirname, "main.ts"),
      "editor.worker": path.join(packages, "monaco-vscode-api", "workers", "editor.worker.js"),
      "textmate.worker": path.join(packages, "monaco-vscode-textmate-service-override", "worker.js"),
    },
    bundle: true,
    format: "esm",
    outdir: path.join(__dirname, "out"),
    nodePaths: [path.join(__dirname, "node_modules")],
    plugins: [inPlaceOfNode],
    logLevel: "error",
    // What is named by import.meta.url is asked for by that address.
    loader: { ".mp3": "empty", ".png": "file", ".svg": "file", ".ttf": "file" },
  })
  .catch(() => process.exit(1));
