// Builds the site. Arguments: the top of the project, and the directory for the site.
"use strict";

const { execFileSync } = require("child_process");
const { createHash } = require("crypto");
const esbuild = require("esbuild-wasm");
const fs = require("fs");
const { Marked } = require("marked");
const path = require("path");

const [top, site] = process.argv.slice(2).map((argument) => path.resolve(argument));
const inSite = (name) => path.join(site, name);

// The examples are those of the project.
const examples = {
  name: "examples",
  setup(build) {
    build.onResolve({ filter: /^examples$/ }, () => ({ path: "examples", namespace: "examples" }));
    build.onLoad({ filter: /.*/, namespace: "examples" }, () => {
      const folder = path.join(top, "examples");
      const names = fs.readdirSync(folder).filter((name) => name.endsWith(".szirpa")).sort();
      const texts = names.map((name) => [
        path.parse(name).name, fs.readFileSync(path.join(folder, name), "utf8"),
      ]);
      return { contents: JSON.stringify({ examples: Object.fromEntries(texts) }), loader: "json" };
    });
  },
};

const common = {
  bundle: true, minify: true, format: "esm", target: "es2022", logLevel: "error", charset: "utf8",
  alias: { hxzirpa: path.join(__dirname, "..", "package", "index.mjs") },
};

async function bundle() {
  const { metafile } = await esbuild.build({
    ...common,
    entryPoints: {
      main: path.join(__dirname, "src", "main.ts"),
      engine: path.join(__dirname, "workers", "engine.ts"),
      style: path.join(__dirname, "style.css"),
    },
    outdir: site,
    metafile: true,
    plugins: [examples],
  });
  return metafile;
}

// What the module is made of besides the project: libraries of Debian's packages.
const LIBRARIES = ["nlohmann-json3-dev", "emscripten"];

// The licences of the packages in the bundle, and of the libraries in the module.
function writeNotices(metafile) {
  const listed = path.join(__dirname, "bundled.json");
  fs.writeFileSync(listed, JSON.stringify(metafile));
  const notices = path.join(top, "editors", "vscode", "notices.js");
  execFileSync(process.execPath, [notices, listed, inSite("NOTICES.txt")], { stdio: "inherit" });
  for (const name of LIBRARIES) {
    const text = fs.readFileSync(`/usr/share/doc/${name}/copyright`, "utf8");
    fs.appendFileSync(inSite("NOTICES.txt"), `\n${"-".repeat(72)}\n\n${name}, in hxzirpa.wasm\n\n${text}`);
  }
}

// The chapters of the diagnostics; a link to one ends in its identifier, which is its heading.
function writeChapters() {
  const marked = new Marked({
    renderer: {
      heading({ tokens, depth, text }) {
        return `<h${depth} id="${text}">${this.parser.parseInline(tokens)}</h${depth}>\n`;
      },
    },
  });
  const text = fs.readFileSync(path.join(top, "docs", "diagnostics.md"), "utf8");
  const frame = fs.readFileSync(path.join(__dirname, "diagnostics.html"), "utf8");
  fs.writeFileSync(inSite("diagnostics.html"), frame.replace("<main>", () => `<main>\n${marked.parse(text)}`));
}

// The worker that keeps the site for days without a network: under another name when any file is another.
async function keepOffline(files) {
  const hash = createHash("sha256");
  files.forEach((name) => hash.update(fs.readFileSync(inSite(name))));
  await esbuild.build({
    ...common,
    entryPoints: [path.join(__dirname, "workers", "offline.ts")],
    outfile: inSite("offline.js"),
    define: { FILES: JSON.stringify(files), VERSION: JSON.stringify(hash.digest("hex").slice(0, 16)) },
  });
}

async function main() {
  fs.mkdirSync(site, { recursive: true });
  writeNotices(await bundle());
  writeChapters();
  for (const [from, to] of [
    [path.join(__dirname, "index.html"), "index.html"],
    [path.join(__dirname, "icon.svg"), "icon.svg"],
    [path.join(top, "build", "wasm", "hxzirpa.wasm"), "hxzirpa.wasm"],
    [path.join(top, "LICENSE"), "LICENSE.txt"],
  ]) {
    fs.copyFileSync(from, inSite(to));
    fs.chmodSync(inSite(to), 0o644);
  }
  const all = fs.readdirSync(site, { withFileTypes: true });
  // The npm package may lie there, too, which the page does not need.
  const own = all.filter((each) => each.isFile() && path.extname(each.name) !== ".tgz");
  await keepOffline(own.map(({ name }) => name).sort());
}

main().catch((error) => {
  console.error(error.message);
  process.exit(1);
});
