// What would take too long, and what happens without a network.
"use strict";

const assert = require("node:assert/strict");
const { serve } = require("../serve");
const { SUM } = require("../sources");

// Each line reserves a mebibyte, the most that is reserved at once.
const ENDLESS = `        ORG     0\n${"        RMB     1048576\n".repeat(20000)}`;

exports["the page answers while the assembler works, and stops it"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  await session.drop("endless.szirpa", ENDLESS);
  const stop = page.getByRole("button", { name: "Stop" });
  await stop.waitFor();
  await session.picture("busy");
  await session.pane("Options");
  assert.ok(await page.getByLabel("Name of the source").isVisible());
  await stop.click();
  await session.becomes(session.status, /^Stopped/);
  await session.write(SUM);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
};

exports["what takes too long is stopped"] = async (session) => {
  await session.page.clock.install();
  await session.visitWith(SUM);
  await session.drop("endless.szirpa", ENDLESS);
  await session.becomes(session.said, /is here/);
  await session.page.getByRole("button", { name: "Stop" }).waitFor();
  // An answer in between is a sign of life, from which on the time counts anew.
  for (let turn = 0; turn < 5; ++turn) {
    await session.page.clock.fastForward(20_000);
    await session.page.waitForTimeout(200);
  }
  await session.becomes(session.status, /^Stopped: it has taken longer than 20 seconds/);
};

exports["a block without end is reported at once"] = async (session) => {
  await session.visitWith("        ORG     0\n        RMB     2000000000\n");
  await session.becomes(session.status, /^1 error/);
  await session.write(SUM);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
};

// The server is gone, not only the way to it: what a browser cuts off, workers may still reach.
exports["the page opens without a network"] = async (session) => {
  const { page } = session;
  const server = await serve(session.site, "/");
  session.base = server.address;
  await session.visit();
  await page.evaluate(() => navigator.serviceWorker.ready);
  await session.until(() => navigator.serviceWorker.controller !== null);
  server.close();
  await assert.rejects(fetch(server.address));
  await session.visitWith(SUM);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
  await page.goto(`${session.base}diagnostics.html`);
  assert.ok(await page.locator("h2#bad-label").isVisible());
};

exports["nothing but files of the site is asked for, and no cookie is left"] = async (session) => {
  const asked = [];
  session.context.on("request", (request) => asked.push(request.url()));
  await session.visitWith(SUM);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
  await session.page.evaluate(() => navigator.serviceWorker.ready);
  assert.ok(asked.length > 3);
  assert.deepEqual(asked.filter((address) => !address.startsWith(session.base)), []);
  assert.deepEqual(await session.context.cookies(), []);
  await session.text();
  assert.deepEqual(await session.page.evaluate(() => Object.keys(localStorage)), ["hxzirpa.source"]);
};
