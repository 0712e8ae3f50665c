// Applies the problem patterns of the extension to lines, as VS Code does.
//
//   node match_problems.js PACKAGE <LINES
//
// LINES is a JSON list. Written is a JSON list: for each line, the patterns that match it, by name,
// with what they find.
'use strict';

const fs = require('fs');

const FIELDS = ['file', 'line', 'severity', 'message'];

function find(pattern, line) {
  const groups = new RegExp(pattern.regexp).exec(line);
  return groups && Object.fromEntries(FIELDS.map((field) => [field, groups[pattern[field]]]));
}

const { problemPatterns } = JSON.parse(fs.readFileSync(process.argv[2], 'utf8')).contributes;
const lines = JSON.parse(fs.readFileSync(0, 'utf8'));
const found = lines.map((line) => Object.fromEntries(
  problemPatterns
    .map((pattern) => [pattern.name, find(pattern, line)])
    .filter(([, fields]) => fields),
));
process.stdout.write(JSON.stringify(found));
