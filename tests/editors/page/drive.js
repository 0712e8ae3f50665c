// Opens the page in a browser, with the real server at the other end of its messages; writes what was
// seen to seen.json, and two pictures. Arguments: the page's script, the server, the source, and where the
// results go.
"use strict";

const fs = require("fs");
const http = require("http");
const path = require("path");
const { spawn } = require("child_process");
const { chromium } = require("playwright-core");
const { StreamMessageReader, StreamMessageWriter } = require("vscode-jsonrpc/node");

const [script, program, source, results] = process.argv.slice(2);
const TYPES = { ".css": "text/css", ".js": "text/javascript", ".wasm": "application/wasm" };
const COLOURS = "[...document.querySelectorAll('.view-line span[class^=mtk]')].map((word) => word.className)";
const PAGE =
  `<!DOCTYPE html><link rel="stylesheet" href="${script}.css"><body style="margin:0">` +
  '<div id="editor" style="width:760px;height:134px"></div>' +
  `<script type="module" src="${script}.js"></script>`;

// Where the page's addresses lead: to its bundle, the extension, and what packages ask for by themselves.
const THEMES = "node_modules/@codingame/monaco-vscode-theme-defaults-default-extension";
const PLACES = ["out", "..", THEMES, "node_modules"].map((place) => path.join(__dirname, place));

function isFile(name) {
  return fs.existsSync(name) && fs.statSync(name).isFile();
}

function files(request, response) {
  const { pathname } = new URL(request.url, "http://page");
  const found = PLACES.map((place) => path.join(place, pathname)).find(isFile);
  const isPage = pathname === "/";
  const type = TYPES[path.extname(pathname)] ?? (isPage ? "text/html" : "application/octet-stream");
  response.writeHead(found || isPage ? 200 : 404, { "content-type": type });
  response.end(found ? fs.readFileSync(found) : isPage ? PAGE : "");
}

async function session(page, server) {
  const writer = new StreamMessageWriter(server.stdin);
  await page.exposeFunction("toServer", (message) => writer.write(JSON.parse(message)));
  new StreamMessageReader(server.stdout).listen((message) => {
    page.evaluate((each) => window.fromServer(each), message).catch(() => undefined);
  });
  const said = [];
  page.on("pageerror", (error) => said.push(String(error)));
  page.on("console", (message) => message.type() === "error" && said.push(message.text()));
  const web = http.createServer(files);
  try {
    await new Promise((done) => web.listen(0, "127.0.0.1", done));
    await page.goto(`http://127.0.0.1:${web.address().port}/`);
    await page.waitForFunction(() => window.start);
    await page.evaluate((text) => window.start(text), fs.readFileSync(source, "utf8"));
    await page.evaluate(() => window.seeMistake());
    await page.locator(".squiggly-error").first().waitFor();
    // Without the first instruction, BRA stands two bytes ahead of its place.
    await page.getByText("12: 21 FE").first().waitFor();
    // The grammar tells a label from a number.
    await page.waitForFunction(`new Set(${COLOURS}).size > 3`);
    await page.screenshot({ path: path.join(results, "mistake.png") });
    const seen = await page.evaluate(() => window.fixJumpAndRename());
    await page.getByText("10: F0 05").first().waitFor();
    await page.screenshot({ path: path.join(results, "mended.png") });
    return seen;
  } catch (error) {
    return { failure: [error.stack, ...said].join("\n") };
  } finally {
    web.close();
  }
}

(async () => {
  const options = { executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] };
  const browser = await chromium.launch(options);
  const server = spawn(program, ["lsp"]);
  const page = await browser.newPage({ viewport: { width: 760, height: 134 } });
  page.setDefaultTimeout(30000);
  const seen = await session(page, server);
  fs.writeFileSync(path.join(results, "seen.json"), JSON.stringify(seen));
  server.kill();
  await browser.close();
  process.exit();
})();
