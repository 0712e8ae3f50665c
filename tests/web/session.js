// A user in front of the page.
"use strict";

const path = require("path");

class Session {
  // Errors of the page and what its policy forbids fail a scenario.
  complaints = [];

  static async begin(browser, base, results, options = {}) {
    const session = new Session();
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

  end() {
    return this.context.close();
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

  async text() {
    return this.page.evaluate(() => {
      const kept = JSON.parse(localStorage.getItem("hxzirpa.source"));
      return kept.source;
    });
  }

  async becomes(locator, pattern) {
    await locator.filter({ hasText: pattern }).first().waitFor();
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
