// The program is looked at: listing, map, names, outputs.
"use strict";

const assert = require("node:assert/strict");
const { SUM, SUM_LISTING, SUM_RECORDS, longSource } = require("../sources");

async function nameIt(session, name) {
  await session.pane("Options");
  await session.page.getByLabel("Name of the source").fill(name);
}

async function firstLine(page, pane) {
  return page.evaluate((id) => {
    const scroller = document.getElementById(id).shadowRoot.querySelector(".cm-scroller");
    const top = scroller.getBoundingClientRect().top;
    const lines = [...scroller.querySelectorAll(".cm-line")];
    const found = lines.find((line) => line.getBoundingClientRect().bottom > top + 1);
    return found.textContent;
  }, pane);
}

function scroll(page, pane, pixels) {
  return page.evaluate(([id, top]) => {
    document.getElementById(id).shadowRoot.querySelector(".cm-scroller").scrollTop = top;
  }, [pane, pixels]);
}

async function settle(page) {
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
}

exports["the listing is the one of the program"] = async (session) => {
  await session.visitWith(SUM);
  await nameIt(session, "sum");
  await session.pane("Listing");
  await session.becomes(session.listing, /File: "sum.szirpa"/);
  const lines = await session.listing.locator(".cm-line").allTextContents();
  const begin = lines.findIndex((line) => line.includes("1. "));
  assert.deepEqual(lines.slice(begin, begin + SUM_LISTING.length), SUM_LISTING);
};

exports["source and listing scroll together"] = async (session) => {
  const { page } = session;
  await session.visitWith(longSource(400).replaceAll("NOP", "FCB 1,2,3,4,5,6,7"));
  await session.becomes(session.listing, /400\./);
  // A row has 20 pixels. In the listing each line has a second row.
  await scroll(page, "editor", 6 + 20 * 199);
  await settle(page);
  assert.match(await firstLine(page, "listing"), / 200\. /);
  await settle(page);
  assert.equal(await page.evaluate(() =>
    document.getElementById("editor").shadowRoot.querySelector(".cm-scroller").scrollTop), 6 + 20 * 199);
  await scroll(page, "listing", 0);
  await settle(page);
  const top = await page.evaluate(() =>
    document.getElementById("editor").shadowRoot.querySelector(".cm-scroller").scrollTop);
  assert.ok(top < 20, `the source is at ${top}`);
};

exports["a line of the listing leads to its line"] = async (session) => {
  await session.visitWith(SUM);
  await session.listing.locator(".cm-line", { hasText: "LEAX" }).click();
  assert.equal(await session.line(), "6");
  assert.match(await session.page.locator("#listing .cm-shown").textContent(), /LEAX/);
};

// The last byte of the table is at $1D + 3; its line is the tenth.
exports["a byte leads to its line and back"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  await session.pane("Map");
  await session.becomes(session.byte(0x20), /^04$/);
  await session.byte(0x20).click();
  assert.equal(await session.line(), "10");
  const here = page.locator("#map .here");
  assert.deepEqual(await here.allTextContents(), ["01", "02", "03", "04"]);
  await session.picture("map");
  await session.press("ArrowUp");
  assert.deepEqual(await here.allTextContents(), ["21", "FE"]);
  await session.press("F6");
  const focused = await page.evaluate(() => document.activeElement.getAttribute("aria-label"));
  assert.equal(focused, "$1B: 21 code, HALT, line 9");
};

// 13 bytes of code from $10 on, four of data; $40 is written twice, $41 is reserved.
exports["the map tells what bytes are"] = async (session) => {
  await session.visitWith(`${SUM}        ORG $40\n FCB 1\n ORG $40\n FCB 2\n RMB 3\n ORG $FF\n FCB 1,2\n`);
  await session.pane("Map");
  const { page } = session;
  await session.becomes(page.locator("#legend"), /13 code/);
  assert.equal(await page.locator("#map .code").count(), 13);
  assert.equal(await page.locator("#map .data").count(), 5);
  assert.equal(await page.locator("#map .reserved").count(), 3);
  assert.equal(await page.locator("#map .twice").count(), 1);
  await session.becomes(page.locator("#legend .beyond"), /^1 above FF$/);
  await session.byte(0x40).hover();
  assert.equal(await page.locator("#details").textContent(), "$40: 02 written twice, line 14");
};

exports["names are shown with values and uses"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  await session.pane("Names");
  const rows = page.locator("#names tbody tr");
  const texts = async () => (await rows.allInnerTexts()).map((text) => text.split(/\s+/).join(" "));
  await rows.nth(3).waitFor();
  assert.deepEqual(await texts(), [
    "START label $10 16 3 0", "NEXT label $13 19 5 1", "HALT label $1B 27 9 1", "TABLE label $1D 29 10 2",
  ]);
  await page.getByRole("button", { name: "Name", exact: true }).click();
  assert.deepEqual((await texts()).map((text) => text.split(" ")[0]), ["HALT", "NEXT", "START", "TABLE"]);
  await page.getByRole("button", { name: "TABLE, line 10" }).click();
  assert.equal(await session.line(), "10");
};

exports["outputs are kept as files"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  await nameIt(session, "sum");
  await session.pane("Files");
  await session.becomes(page.locator("#outputs"), /sum\.s19.*sum\.lst.*sum_cout\.c.*sum\.fmem.*sum\.szirpa/s);
  const coming = page.waitForEvent("download");
  await page.getByRole("button", { name: "Download: S-records" }).click();
  const download = await coming;
  assert.equal(download.suggestedFilename(), "sum.s19");
  assert.equal(require("node:fs").readFileSync(await download.path(), "utf8"), SUM_RECORDS);
};
