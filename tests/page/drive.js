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

// Most of a scenario is waiting, so some go on at once; where time is measured, one has all of it.
const AT_ONCE = 3;
const ALONE = "speed.js";

const files = fs.readdirSync(path.join(__dirname, "scenarios")).sort();

function scenariosOf(names) {
  return names
    .flatMap((name) => Object.entries(require(path.join(__dirname, "scenarios", name))))
    .filter(([name]) => only === undefined || name.includes(only));
}

async function carryOut(browser, base, scenario) {
  const session = await Session.begin(browser, site, base, results);
  try {
    await scenario(session);
    return session.complaints.length > 0 ? session.complaints.join("\n") : null;
  } catch (error) {
    return [error.stack, ...session.complaints].join("\n");
  } finally {
    await session.end();
  }
}

async function carryOutAll(scenarios, atOnce, browser, base, seen) {
  const waiting = [...scenarios];
  const one = async () => {
    while (waiting.length > 0) {
      const [name, scenario] = waiting.shift();
      seen[name] = await carryOut(browser, base, scenario);
    }
  };
  await Promise.all(Array.from({ length: atOnce }, one));
}

(async () => {
  const server = await serve(site, "/some/where/");
  const browser = await chromium.launch(BROWSER);
  const seen = {};
  await carryOutAll(scenariosOf([ALONE]), 1, browser, server.address, seen);
  const others = files.filter((name) => name !== ALONE);
  await carryOutAll(scenariosOf(others), AT_ONCE, browser, server.address, seen);
  fs.writeFileSync(path.join(results, "seen.json"), JSON.stringify(seen, null, 1));
  await browser.close();
  server.close();
})();
