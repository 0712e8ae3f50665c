// Writes the names, versions and licences of the packages that the bundles hold, which esbuild has
// listed.
"use strict";

const fs = require("fs");
const path = require("path");

const listed = process.argv.slice(2);
const written = listed.pop();
const inputs = listed.flatMap((file) => Object.keys(JSON.parse(fs.readFileSync(file, "utf8")).inputs));
const packages = new Set(
  inputs
    .map((input) => /^(.*node_modules\/(?:@[^/]+\/)?[^/]+)\//.exec(input))
    .filter((found) => found)
    .map((found) => found[1]),
);

function notice(directory) {
  const { name, version, license } = JSON.parse(
    fs.readFileSync(path.join(directory, "package.json"), "utf8"),
  );
  const file = fs.readdirSync(directory).find((each) => /^licen[cs]e/i.test(each));
  if (!license || !file) {
    throw new Error(`${name} has no licence`);
  }
  const text = fs.readFileSync(path.join(directory, file), "utf8").trim();
  return `${name} ${version} (${license})\n\n${text}\n`;
}

const notices = [...packages].map(notice).sort();
fs.writeFileSync(written, notices.join(`\n${"-".repeat(72)}\n\n`));
