// Sources that come from elsewhere: links and files, friendly and hostile.
"use strict";

const assert = require("node:assert/strict");
const zlib = require("node:zlib");
const { SUM, SUM_RECORDS } = require("../sources");

function fragment(text) {
  return `#${zlib.deflateRawSync(text).toString("base64url")}`;
}

async function link(session) {
  await session.page.getByRole("button", { name: "Share" }).click();
  await session.page.locator("#link[open]").waitFor();
  return session.page.getByLabel("Link", { exact: true }).inputValue();
}

// Whatever a source holds, the page has no element that it has not made itself.
async function isUnharmed({ page }) {
  assert.equal(await page.evaluate(() => window.harmed), undefined);
  assert.equal(await page.locator("img, iframe, object, embed, script:not([src])").count(), 0);
}

exports["a source is shared and opened again"] = async (session) => {
  await session.visitWith(SUM);
  await session.pane("Options");
  await session.page.getByLabel("Name of the source").fill("sum");
  await session.page.getByLabel("Debug records").check();
  const address = await link(session);
  const data = Buffer.from(new URL(address).hash.slice(1), "base64url");
  assert.equal(JSON.parse(zlib.inflateRawSync(data).toString()).source, SUM);

  const other = await session.another();
  await other.page.goto(address);
  await other.becomes(other.said, /link/);
  assert.equal(await other.text(), SUM);
  assert.equal(await other.page.locator("#title").textContent(), "sum.szirpa");
  await other.pane("Options");
  assert.ok(await other.page.getByLabel("Debug records").isChecked());
  assert.equal(new URL(other.page.url()).hash, "");
};

exports["a shared source does not cost the own one"] = async (session) => {
  await session.visitWith(SUM);
  await session.text();
  await session.visit(fragment(JSON.stringify({ source: " ORG 0\n NOP\n" })));
  await session.becomes(session.source, /NOP/);
  await session.source.focus();
  await session.press("Control+z");
  assert.equal(await session.text(), SUM);
};

exports["broken links are refused"] = async (session) => {
  await session.visitWith(SUM);
  const texts = [
    "#?", "#AAAA", fragment("no JSON"), fragment("null"), fragment('{"source": 5}'), fragment("[]"),
    fragment(Buffer.from([0xff, 0xfe])), fragment(JSON.stringify({ source: SUM })).slice(0, -20),
  ];
  for (const each of texts) {
    await session.page.evaluate((hash) => { location.hash = hash; }, each);
    await session.becomes(session.said, /The link can't be read/);
    await session.until(() => location.hash === "");
    assert.equal(await session.text(), SUM);
    await session.press("Control+End", " ", "Backspace");
    await session.until(() => document.getElementById("said").textContent === "");
  }
};

// 64 MiB of blanks are 64 KiB in the link.
exports["a link that would fill the memory is refused"] = async (session) => {
  await session.visitWith(SUM);
  const bomb = fragment(JSON.stringify({ source: " ".repeat(1 << 26) }));
  assert.ok(bomb.length < 100_000);
  await session.page.evaluate((hash) => { location.hash = hash; }, bomb);
  await session.becomes(session.said, /too large/);
  assert.equal(await session.text(), SUM);
};

exports["hostile options in a link are no options"] = async (session) => {
  const options = {
    name: "../../<img src=x onerror=harmed=1>", define: [{}, 5, "A", "<b>"], nocase: "yes", debug: 1,
    constructor: 1, __proto__: { hints: true },
  };
  await session.visit(fragment(JSON.stringify({ source: SUM, options })));
  await session.becomes(session.said, /link/);
  await session.pane("Options");
  const { page } = session;
  assert.equal(await page.getByLabel("Name of the source").inputValue(), "_img src_x onerror_harmed_1_");
  assert.equal(await page.getByLabel("Defined names").inputValue(), "A <b>");
  assert.equal(await page.locator("#options input:checked").count(), 0);
  await isUnharmed(session);
};

exports["what a source holds stays text"] = async (session) => {
  const { page } = session;
  const script = "<img/src=x/onerror=harmed=1>";
  await session.visitWith(
    ` ORG 0\n ${script}\nlabel LDA #${script}\n FCS "${script}"\n#error ${script}\n#define ${script} 1\n` +
    ` LDA **${script}**\n LDA \`${script}\`\nname EQU '<'+'>'\n LDA name+1\n`,
  );
  await session.becomes(session.status, /errors/);
  await session.becomes(page.locator("#problems"), /<img/);
  for (const pane of ["Map", "Names", "Files", "Listing"]) {
    await session.pane(pane);
    await isUnharmed(session);
  }
  // The faulty word, and the expression of the constant.
  for (const [line, x] of [[1, 30], [8, 75]]) {
    await session.source.locator(".cm-line").nth(line).hover({ position: { x, y: 10 } });
    await page.locator(".cm-tooltip").first().waitFor();
    await isUnharmed(session);
  }
};

exports["the policy forbids scripts and HTML that are made of texts"] = async (session) => {
  const { page } = session;
  await session.visitWith(SUM);
  const allowed = await page.evaluate(() => {
    const attempts = {
      html: () => { document.body.innerHTML = "<img src=x onerror=harmed=1>"; },
      script: () => { document.createElement("script").textContent = "harmed = 2"; },
      address: () => { document.createElement("script").src = "https://example.com/"; },
      handler: () => document.createElement("button").setAttribute("onclick", "harmed = 3"),
      timer: () => setTimeout("harmed = 4"),
      worker: () => new Worker("data:text/javascript,0"),
    };
    return Object.keys(attempts).filter((name) => {
      try {
        attempts[name]();
        return true;
      } catch {
        return false;
      }
    });
  });
  assert.deepEqual(allowed, []);
  await page.waitForTimeout(50);
  await isUnharmed(session);
  session.complaints.length = 0;
};

// The names that are found are L and the address; the branch to itself is at $1B.
exports["a program that is dropped becomes a source"] = async (session) => {
  await session.visit();
  await session.drop("sum.s19", SUM_RECORDS);
  await session.becomes(session.said, /sum is a source again/);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
  await session.becomes(session.source, /ORG +\$10/);
  await session.pane("Files");
  await session.page.getByText("S-records", { exact: true }).click();
  await session.becomes(session.page.locator("#outputs pre").first(), /S9/);
  assert.equal(await session.page.locator("#outputs pre").first().textContent(), SUM_RECORDS);
};

exports["a source that is dropped is opened"] = async (session) => {
  await session.visit();
  await session.drop("sum.szirpa", SUM);
  await session.becomes(session.status, /^No errors · 17 bytes$/);
  assert.equal(await session.text(), SUM);
  assert.equal(await session.page.locator("#title").textContent(), "sum.szirpa");
};

exports["what is no program is refused"] = async (session) => {
  await session.visitWith(SUM);
  await session.drop("broken.s19", "S1140010901D05C600CC019C2125F821FE0102030400\n");
  await session.becomes(session.said, /This is no program, line 1: /);
  await session.drop("large.szirpa", " ".repeat((1 << 20) + 1));
  await session.becomes(session.said, /larger than a mebibyte/);
  assert.equal(await session.text(), SUM);
};
