// Tokenizes sources with the grammar, by the library that VS Code uses.
//
//   node tokenize.js GRAMMAR <FILES
//
// FILES is a JSON list of paths. Written is a JSON object: for each path a list of lines, each a
// list of tokens [start, end, scopes] without the scope that all tokens share.
'use strict';

const fs = require('fs');
const path = require('path');

// The libraries are installed where this is run, not where this file is.
const modules = path.join(process.cwd(), 'node_modules');
const oniguruma = require(path.join(modules, 'vscode-oniguruma'));
const textmate = require(path.join(modules, 'vscode-textmate'));

async function loadGrammar(file) {
  const wasm = path.join(modules, 'vscode-oniguruma', 'release', 'onig.wasm');
  await oniguruma.loadWASM(fs.readFileSync(wasm).buffer);
  const registry = new textmate.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async () => textmate.parseRawGrammar(fs.readFileSync(file, 'utf8'), file),
  });
  return registry.loadGrammar('source.szirpa');
}

// Every byte becomes one character, so that columns are those of the assembler.
function sourceLines(file) {
  return fs.readFileSync(file, 'latin1').split('\n').map((line) => line.replace(/\r$/, ''));
}

function tokenizeFile(grammar, file) {
  let state = textmate.INITIAL;
  return sourceLines(file).map((line) => {
    const result = grammar.tokenizeLine(line, state);
    state = result.ruleStack;
    return result.tokens.map((token) => [
      token.startIndex,
      Math.min(token.endIndex, line.length),
      token.scopes.slice(1),
    ]);
  });
}

async function main() {
  const grammar = await loadGrammar(process.argv[2]);
  const files = JSON.parse(fs.readFileSync(0, 'utf8'));
  const tokens = Object.fromEntries(files.map((file) => [file, tokenizeFile(grammar, file)]));
  process.stdout.write(JSON.stringify(tokens));
}

main();
