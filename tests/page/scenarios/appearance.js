// How the page looks, and that everyone can use it.
"use strict";

const assert = require("node:assert/strict");
const fs = require("node:fs");
const { SUM } = require("../sources");

const AXE = fs.readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");
const PANES = ["Listing", "Map", "Names", "Files", "Options"];
const MISTAKEN = SUM.replace("CLRA", "CLAR");

async function axeFinds(page, rules) {
  await page.evaluate(AXE);
  const options = { resultTypes: ["violations"], ...(rules ? { runOnly: rules } : {}) };
  const { violations } = await page.evaluate((given) => axe.run(given), options);
  return violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(" ")}`);
}

async function isAccessible(session, name, rules) {
  for (const pane of PANES) {
    await session.pane(pane);
    await session.picture(`${name}-${pane.toLowerCase()}`);
    assert.deepEqual(await axeFinds(session.page, rules), [], pane);
  }
  await session.page.getByRole("button", { name: "Help" }).click();
  await session.picture(`${name}-help`);
  assert.deepEqual(await axeFinds(session.page, rules), [], "help");
  await session.press("Escape");
  await session.page.getByRole("button", { name: "Share" }).click();
  await session.page.getByLabel("Link", { exact: true }).waitFor();
  assert.deepEqual(await axeFinds(session.page, rules), [], "share");
  await session.press("Escape");
}

async function background(page) {
  const colour = await page.evaluate(() => getComputedStyle(document.querySelector("main")).backgroundColor);
  return colour.match(/\d+/g).slice(0, 3).reduce((sum, part) => sum + Number(part), 0) / 3;
}

exports["axe finds nothing in light colours"] = async (session) => {
  await session.visitWith(MISTAKEN);
  await session.page.locator("#problems .fix").first().waitFor();
  await isAccessible(session, "light");
};

exports["axe finds nothing in dark colours"] = async (session) => {
  const other = await session.another({ colorScheme: "dark" });
  await other.visitWith(MISTAKEN);
  await other.page.locator("#problems .fix").first().waitFor();
  await isAccessible(other, "dark", ["color-contrast"]);
};

exports["axe finds nothing on a phone"] = async (session) => {
  const other = await session.another({ viewport: { width: 320, height: 640 }, deviceScaleFactor: 2 });
  await other.visitWith(MISTAKEN);
  await other.page.locator("#problems .fix").first().waitFor();
  assert.deepEqual(await axeFinds(other.page), []);
  await isAccessible(other, "phone", ["scrollable-region-focusable", "color-contrast"]);
};

exports["a phone needs no scrolling to the side"] = async (session) => {
  const other = await session.another({ viewport: { width: 320, height: 640 }, deviceScaleFactor: 2 });
  const { page } = other;
  await other.visitWith(MISTAKEN);
  await page.locator("#problems .fix").first().waitFor();
  await other.picture("phone");
  for (const pane of ["Source", ...PANES]) {
    await other.pane(pane);
    const wide = await page.evaluate(() => [
      document.documentElement,
      ...document.querySelectorAll("header, nav, .bar, #problems, .scrolled, footer, #map"),
    ].filter((each) => each.scrollWidth > each.clientWidth).map((each) => each.outerHTML.slice(0, 60)));
    assert.deepEqual(wide, [], pane);
  }
  const outside = await page.locator("button:visible").evaluateAll((buttons) =>
    buttons.filter((button) => button.getBoundingClientRect().right > 320).length);
  assert.equal(outside, 0);
};

// On a phone the source is one of the views.
exports["a byte leads to the source on a phone"] = async (session) => {
  const other = await session.another({ viewport: { width: 320, height: 640 }, hasTouch: true });
  await other.visitWith(SUM);
  await other.pane("Map");
  await other.byte(0x20).tap();
  await other.source.waitFor();
  assert.equal(await other.line(), "10");
};

// Each word of a source with the colour that it has by what it is; words side by side of one kind are one.
const COLOURED = [
  ["; words", "comment"],
  ["name: EQU $1F+%101%3", "label directive number quiet number quiet number"],
  ["  LDX #name ignored", "keyword quiet label comment"],
  ["  LDA A,X ; why", "keyword register quiet register comment"],
  ["  BNE name", "keyword label"],
  ["  CLRA all else", "keyword comment"],
  ['  FCS "a;b" rest', "directive string comment"],
  ["  FCB 'A',';' rest", "directive number quiet number comment"],
  ["  FCB 1;2", "directive number quiet number"],
  ["  LDAA #1", "error comment"],
  ["#ifdef name else", "directive label comment"],
  ["##if name>1", "directive label quiet number"],
  ["#if name", "directive error comment"],
  ["#define TWO 2", "directive label number"],
];

exports["words have the colours of what they are"] = async (session) => {
  const { page } = session;
  await session.visitWith(COLOURED.map(([line]) => line).join("\n"));
  await page.mouse.move(0, 0);
  const names = "comment label directive number quiet keyword register string error".split(" ");
  const seen = await page.evaluate((all) => {
    const probe = document.body.appendChild(document.createElement("i"));
    const nameOf = Object.fromEntries(all.map((name) => {
      probe.style.color = `var(--${name})`;
      return [getComputedStyle(probe).color, name];
    }));
    const editor = document.getElementById("editor").shadowRoot;
    return [...editor.querySelectorAll(".cm-line")].map((line) => {
      const spans = [...line.querySelectorAll("span")].filter(
        (span) => span.childElementCount === 0 && span.textContent.trim() !== "");
      return spans.map((span) => nameOf[getComputedStyle(span).color]).join(" ");
    });
  }, names);
  assert.deepEqual(seen, COLOURED.map(([, colours]) => colours));
};

exports["colours follow the system, or the switch"] = async (session) => {
  const { page } = session;
  await session.visit();
  assert.ok((await background(page)) > 200);
  await page.emulateMedia({ colorScheme: "dark" });
  assert.ok((await background(page)) < 60);
  const look = page.getByRole("button", { name: "Colours" });
  await look.click();
  assert.equal(await look.getAttribute("aria-label"), "Colours: light");
  assert.ok((await background(page)) > 200);
  await page.emulateMedia({ colorScheme: "light" });
  await look.click();
  assert.ok((await background(page)) < 60);
  await session.visit();
  assert.ok((await background(page)) < 60);
};

// The picture at the top of the README.
exports["the page is a picture"] = async (session) => {
  const { page } = session;
  await page.setViewportSize({ width: 1100, height: 420 });
  await session.visit();
  await session.pane("Options");
  await page.getByLabel("Name of the source").fill("sum");
  await session.pane("Listing");
  await session.write(MISTAKEN);
  await page.locator("#problems .fix").first().waitFor();
  await session.becomes(session.listing, /Illegal/);
  await session.source.locator(".cm-line").nth(3).click({ position: { x: 90, y: 10 } });
  await page.mouse.move(0, 0);
  await session.picture("page");
};
