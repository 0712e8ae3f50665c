// Carries out the scenarios in a browser, each in a page of its own, and writes what became of them:
// null, or why it failed. Arguments: the site, the directory for results and pictures, and the name of a
// scenario where only one is wanted.
"use strict";

const fs = require("fs");
const path = require("path");
const { chromium } = require("playwright-core");
const { Session } = require("./session");
const { serve } = require("./serve");

const [site, results, only] = process.argv.slice(2);
const BROWSER = { executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] };

const scenarios = fs
  .readdirSync(path.join(__dirname, "scenarios"))
  .sort()
  .flatMap((name) => Object.entries(require(path.join(__dirname, "scenarios", name))))
  .filter(([name]) => only === undefined || name.includes(only));

async function carryOut(browser, base, scenario) {
  const session = await Session.begin(browser, base, results);
  try {
    await scenario(session);
    return session.complaints.length > 0 ? session.complaints.join("\n") : null;
  } catch (error) {
    return [error.stack, ...session.complaints].join("\n");
  } finally {
    await session.end();
  }
}

(async () => {
  const server = await serve(site, "/some/where/");
  const browser = await chromium.launch(BROWSER);
  const seen = {};
  for (const [name, scenario] of scenarios) {
    seen[name] = await carryOut(browser, server.address, scenario);
  }
  fs.writeFileSync(path.join(results, "seen.json"), JSON.stringify(seen, null, 1));
  await browser.close();
  server.close();
})();
