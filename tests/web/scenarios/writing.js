// A source is written, and what is wrong with it is mended.
"use strict";

const assert = require("node:assert/strict");

// LDAA is no instruction. LDA # is F0 and STA is E1, as the page of the instructions has them.
const MISTAKE = "        ORG     $10\nstart   LDAA    #5\n        STA     start\n";

exports["a mistake is seen and its fix taken"] = async (session) => {
  const { page, listing, status } = session;
  await session.visitWith(MISTAKE);
  await session.becomes(status, /^1 error/);
  await session.becomes(page.locator("#problems li.error"), /^2:9error.*LDAA/);
  await session.picture("mistake");
  await page.locator("#problems .fix").first().click();
  await session.becomes(listing, /10 F0 05 +2\. start {3}LDA {4}#5/);
  await session.becomes(listing, /12 E1 10 +3\./);
  await session.becomes(status, /^No errors · 4 bytes$/);
  assert.equal(await page.locator("#problems li").count(), 0);
};
