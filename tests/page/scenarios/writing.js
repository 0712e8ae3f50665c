// A source is written, and what is wrong with it is mended.
"use strict";

const assert = require("node:assert/strict");
const { SUM } = require("../sources");

// LDAA is no instruction. LDA # is F0 and STA is E1, as the page of the instructions has them.
const MISTAKE = "        ORG     $10\nstart   LDAA    #5\n        STA     start\n";

exports["a mistake is seen and its fix taken"] = async (session) => {
  const { page, listing, status } = session;
  await session.visitWith(MISTAKE);
  await session.becomes(status, /^1 error/);
  await session.becomes(page.locator("#problems li.error"), /^2:9error.*LDAA/);
  await page.locator("#problems .fix").first().click();
  await session.becomes(listing, /10 F0 05 +2\. start {3}LDA {4}#5/);
  await session.becomes(listing, /12 E1 10 +3\./);
  await session.becomes(status, /^No errors · 4 bytes$/);
  assert.equal(await page.locator("#problems li").count(), 0);
};

exports["a mistake is underlined and explained"] = async (session) => {
  const { page } = session;
  await session.visitWith(MISTAKE);
  assert.equal(await page.locator(".cm-lintRange-error").textContent(), "LDAA");
  await page.locator(".cm-lintRange-error").hover();
  const tooltip = page.locator(".cm-tooltip .cm-diagnostic");
  await session.becomes(tooltip, /LDAA/);
  await session.picture("mistake");
  assert.equal(await tooltip.getByRole("link").getAttribute("href"),
    `${session.base}diagnostics.html#unknown-instruction`);
  await page.goto(`${session.base}diagnostics.html#unknown-instruction`);
  assert.ok(await page.locator("h2#unknown-instruction").isVisible());
};

// TABLE is $1D, so TABLE+4 is $21, which is 33.
exports["values are shown where the pointer is"] = async (session) => {
  await session.visitWith(SUM);
  await session.source.locator(".cm-line", { hasText: "CMPX" }).getByText("TABLE").first().hover();
  await session.becomes(session.page.locator(".cm-hover"), /TABLE\+4 = 33 \(\$21\)/);
};

exports["values and bytes are shown in the source on demand"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  await session.pane("Options");
  await page.getByLabel("Values in the source").check();
  await session.becomes(page.locator("#editor .cm-line").nth(6), /#TABLE\+4= 33 \(\$21\).*17: 9C 21/);
  await session.picture("values");
};

exports["words are completed"] = async (session) => {
  const { page } = session;
  await session.visitWith("        ORG     0\n        CMPS");
  await session.becomes(page.locator(".cm-tooltip-autocomplete"), /CMPSP/);
  await session.press("ArrowDown", "Enter");
  assert.equal(await session.text(), "        ORG     0\n        CMPSP");
};

exports["a line ends by Enter though words are offered"] = async (session) => {
  await session.visitWith("        CMPS");
  await session.page.locator(".cm-tooltip-autocomplete").waitFor();
  await session.press("Enter");
  assert.match(await session.text(), /^ {8}CMPS\n/);
};

exports["a name is changed everywhere"] = async (session) => {
  await session.visitWith(SUM);
  await session.source.locator(".cm-line", { hasText: "NEXT" }).getByText("NEXT").first().click();
  await session.press("F2");
  await session.press("Control+a");
  await session.page.keyboard.insertText("AGAIN");
  await session.press("Enter");
  await session.becomes(session.source, /AGAIN\s+ADDA/);
  assert.equal(await session.text(), SUM.replaceAll("NEXT", "AGAIN"));
};

exports["a name leads to its definition"] = async (session) => {
  await session.visitWith(SUM);
  await session.source.locator(".cm-line", { hasText: "CMPX" }).getByText("TABLE").first().click();
  await session.press("F12");
  await session.until(() =>
    document.getElementById("editor").shadowRoot.querySelector(".cm-activeLineGutter").textContent === "10");
};

exports["fields are put in columns"] = async (session) => {
  await session.visitWith(" ORG 0\nstart LDA #1 ; one\n");
  await session.page.getByRole("button", { name: "Tidy" }).click();
  await session.becomes(session.source, /start {3}LDA {5}#1 {14}; one/);
};

// #ifdef is taken when the name is defined; a NOP has one byte, an FCB of two values two.
exports["options change the program at once"] = async (session) => {
  await session.visitWith(" ORG 0\n#ifdef BIG\n FCB 1,2\n#else\n NOP\n#endif\n");
  await session.becomes(session.status, /· 1 byte$/);
  await session.pane("Options");
  await session.page.getByLabel("Defined names").fill("BIG");
  await session.becomes(session.status, /· 2 bytes$/);
};

exports["names that differ in case are one on demand"] = async (session) => {
  await session.visitWith(" ORG 0\nhere NOP\n BRA HERE\n");
  await session.becomes(session.status, /^1 error/);
  await session.pane("Options");
  await session.page.getByLabel("Case does not count in names").check();
  await session.becomes(session.status, /^No errors · 3 bytes$/);
  assert.equal(await session.page.locator("#problems li.error").count(), 0);
};

exports["an example is taken, and undone"] = async (session) => {
  await session.visitWith(SUM);
  await session.page.locator("#examples").selectOption("sort");
  await session.becomes(session.source, /bubble sort/);
  await session.source.focus();
  await session.press("Control+z");
  assert.equal(await session.text(), SUM);
};

exports["a text is there again at the next visit"] = async (session) => {
  await session.visitWith(SUM);
  await session.visit();
  assert.equal(await session.text(), SUM);
};
