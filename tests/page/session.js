// A user in front of the page.
"use strict";

const path = require("path");

class Session {
  // Errors of the page and what its policy forbids fail a scenario.
  complaints = [];

  static async begin(browser, site, base, results, options = {}) {
    const session = new Session();
    session.browser = browser;
    session.site = site;
    session.context = await browser.newContext({ viewport: { width: 1200, height: 760 }, ...options });
    session.base = base;
    session.results = results;
    await session.open();
    return session;
  }

  async open() {
    const page = await this.context.newPage();
    page.setDefaultTimeout(10000);
    page.on("pageerror", (error) => this.complaints.push(String(error)));
    page.on("console", (message) => message.type() === "error" && this.complaints.push(message.text()));
    this.page = page;
    this.source = page.locator("#editor .cm-content");
    this.listing = page.locator("#listing .cm-content");
    this.status = page.locator("#status");
    this.said = page.locator("#said");
  }

  async end() {
    await this.other?.end();
    await this.context.close();
  }

  // Another user, who has another window.
  async another(options) {
    this.other = await Session.begin(this.browser, this.site, this.base, this.results, options);
    this.other.complaints = this.complaints;
    return this.other;
  }

  async visit(fragment = "") {
    await this.page.goto(this.base + fragment);
    await this.becomes(this.status, /error/);
  }

  async visitWith(source) {
    await this.visit();
    await this.write(source);
  }

  // In the place of all that is there. A browser that replaces coloured text tries to keep the colour by a
  // style of its own, which the policy of the page forbids, and complains of.
  async write(source) {
    await this.source.focus();
    await this.page.keyboard.press("Control+a");
    await this.page.keyboard.press("Delete");
    await this.page.keyboard.insertText(source);
  }

  // The source as it is kept when the page is left.
  text() {
    return this.page.evaluate(() => {
      dispatchEvent(new Event("pagehide"));
      return JSON.parse(localStorage.getItem("hxzirpa.source")).source;
    });
  }

  // The number of the line with the cursor.
  line() {
    return this.page.locator("#editor .cm-activeLineGutter").textContent();
  }

  press(...keys) {
    return keys.reduce((done, key) => done.then(() => this.page.keyboard.press(key)), Promise.resolve());
  }

  // As on a keyboard, where a tab is a key.
  async type(text) {
    for (const piece of text.split(/(?<=\t)|(?=\t)/)) {
      await (piece === "\t" ? this.press("Tab") : this.page.keyboard.type(piece));
    }
  }

  // A file that is dropped onto the page.
  async drop(name, content) {
    const transfer = await this.page.evaluateHandle(([fileName, text]) => {
      const made = new DataTransfer();
      made.items.add(new File([text], fileName));
      return made;
    }, [name, content]);
    await this.page.dispatchEvent("body", "drop", { dataTransfer: transfer });
  }

  async becomes(locator, pattern) {
    await locator.filter({ hasText: pattern }).first().waitFor();
  }

  // The browser's own way to wait for a condition evaluates strings, which the page's policy forbids.
  async until(condition, argument) {
    const end = Date.now() + 10000;
    while (!(await this.page.evaluate(condition, argument))) {
      if (Date.now() > end) {
        throw new Error(`waited in vain for ${condition}`);
      }
      await this.page.waitForTimeout(5);
    }
  }

  pane(name) {
    return this.page.getByRole("tab", { name, exact: true }).click();
  }

  byte(address) {
    return this.page.locator(`#map button[data-address="${address}"]`);
  }

  picture(name, options = {}) {
    return this.page.screenshot({ path: path.join(this.results, `${name}.png`), ...options });
  }
}

exports.Session = Session;
