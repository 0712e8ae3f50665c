// Without a pointer.
"use strict";

const assert = require("node:assert/strict");
const { SUM } = require("../sources");

function focused(page) {
  return page.evaluate(() => {
    let found = document.activeElement;
    while (found.shadowRoot?.activeElement) {
      found = found.shadowRoot.activeElement;
    }
    return found.getAttribute("aria-label") ?? found.textContent;
  });
}

async function tabTo(session, label) {
  const passed = [];
  for (let step = 0; step < 40; ++step) {
    await session.press("Tab");
    passed.push(await focused(session.page));
    if (passed.at(-1) === label) {
      return;
    }
    if (passed.at(-1) === "Source") {
      await session.press("Escape");
    }
  }
  assert.fail(`${label} is not among ${passed.join(" | ")}`);
}

exports["all is done by keys"] = async (session) => {
  const { page, status } = session;
  await session.visit();
  await tabTo(session, "Source");
  await session.press("Control+a", "Delete");
  await session.type("\tORG\t$10\nstart\tLDAA\t#5\n");
  await session.becomes(status, /^1 error/);
  await session.press("F8");
  assert.equal(await session.line(), "2");
  await page.locator("#problems .fix").first().waitFor();
  await session.press("Control+.");
  await session.becomes(status, /^No errors · 2 bytes$/);
  await session.press("F6");
  assert.equal(await focused(page), "$10: F0 code, start, line 2");
  await session.press("ArrowRight");
  assert.equal(await focused(page), "$11: 05 code, line 2");
  await session.press("Enter");
  assert.equal(await focused(page), "Source");
  await session.press("Escape");
  await tabTo(session, "Map");
  await session.press("ArrowRight");
  assert.equal(await focused(page), "Names");
  await session.press("ArrowRight", "ArrowRight");
  assert.equal(await focused(page), "Options");
  await session.press("Tab", "Tab", "Tab", "Space");
  assert.ok(await page.getByLabel("Values in the source").isChecked());
};

exports["tab goes to columns, and leaves the editor after escape"] = async (session) => {
  const { page } = session;
  await session.visitWith("");
  await session.type("a\tNOP\t; one");
  assert.equal(await session.text(), "a       NOP     ; one");
  // Escape ends a look for words first, where one goes on.
  await page.waitForTimeout(200);
  await session.press("Escape", "Tab");
  assert.notEqual(await focused(page), "Source");
};

exports["a listing is reached and read by keys"] = async (session) => {
  await session.visitWith(SUM);
  await session.press("Escape");
  await tabTo(session, "Listing");
  await session.press("Tab");
  assert.equal(await focused(session.page), "Listing");
};
