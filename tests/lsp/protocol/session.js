// Drives `zirpa lsp` by the protocol's own library, and writes what it says as a TypeScript module:
// each message is a constant of the type that the protocol has for it.
//
//     node session.js ZIRPA MODULE
'use strict';

const { writeFileSync } = require('node:fs');
const { spawn } = require('node:child_process');
const rpc = require('vscode-jsonrpc/node');
const protocol = require('vscode-languageserver-protocol/node');

const URI = 'file:///nowhere/prog.szirpa';
const SOURCE = `\ufeff; a
; b
SIZE\tEQU\t3
\tORG\t$10
loop\tLDA\t#SIZE+7%4 ; \u{1D11E}
\tLDXA\t#5
\tBRA\tloop
loop\tRMB\t2
#ifdef NO
\tNOP
#else
idle\tFCS\t"Hi"
#endif
\tLDA\t#
`;
const textDocument = { uri: URI };
const position = { line: 4, character: 12 };
const range = { start: { line: 0, character: 0 }, end: { line: 14, character: 0 } };
const options = { tabSize: 8, insertSpaces: true };

const messages = [];

function keep(type, value) {
  messages.push({ type, value: value === undefined ? null : value });
}

async function ask(connection, name, params) {
  try {
    keep(`ResultOf<typeof protocol.${name}.type>`,
      await connection.sendRequest(protocol[name].type, params));
  } catch (error) {
    keep('protocol.ResponseError<void>["code"]', error.code);
  }
}

const REQUESTS = [
  ['HoverRequest', { textDocument, position }],
  ['HoverRequest', { textDocument, position: { line: 4, character: 6 } }],
  ['HoverRequest', { textDocument, position: { line: 1, character: 1 } }],
  ['InlayHintRequest', { textDocument, range }],
  ['DefinitionRequest', { textDocument, position }],
  ['ReferencesRequest', { textDocument, position, context: { includeDeclaration: true } }],
  ['DocumentHighlightRequest', { textDocument, position }],
  ['PrepareRenameRequest', { textDocument, position }],
  ['PrepareRenameRequest', { textDocument, position: { line: 1, character: 1 } }],
  ['RenameRequest', { textDocument, position, newName: 'COUNT' }],
  ['RenameRequest', { textDocument, position, newName: 'A' }],
  ['DocumentSymbolRequest', { textDocument }],
  ['WorkspaceSymbolRequest', { query: '' }],
  ['FoldingRangeRequest', { textDocument }],
  ['SelectionRangeRequest', { textDocument, positions: [position] }],
  ['SemanticTokensRequest', { textDocument }],
  ['SemanticTokensDeltaRequest', { textDocument, previousResultId: 'none' }],
  ['SemanticTokensRangeRequest', { textDocument, range }],
  ['CompletionRequest', { textDocument, position: { line: 13, character: 6 } }],
  ['CompletionRequest', { textDocument, position: { line: 13, character: 1 } }],
  ['SignatureHelpRequest', { textDocument, position: { line: 13, character: 6 } }],
  ['SignatureHelpRequest', { textDocument, position: { line: 1, character: 1 } }],
  ['CodeActionRequest', { textDocument, range, context: { diagnostics: [] } }],
  ['CodeLensRequest', { textDocument }],
  ['DocumentFormattingRequest', { textDocument, options }],
  ['DocumentRangeFormattingRequest', { textDocument, range, options }],
  ['DocumentDiagnosticRequest', { textDocument }],
];

function connect(zirpa) {
  const server = spawn(zirpa, ['lsp', '--stdio'], { stdio: ['pipe', 'pipe', 'inherit'] });
  const connection = rpc.createMessageConnection(
    new rpc.StreamMessageReader(server.stdout), new rpc.StreamMessageWriter(server.stdin));
  connection.onNotification(protocol.PublishDiagnosticsNotification.type,
    (params) => keep('protocol.PublishDiagnosticsParams', params));
  connection.onNotification(protocol.ShowMessageNotification.type,
    (params) => keep('protocol.ShowMessageParams', params));
  connection.onRequest(protocol.RegistrationRequest.type,
    (params) => keep('protocol.RegistrationParams', params));
  connection.onRequest(protocol.ConfigurationRequest.type, (params) => {
    keep('protocol.ConfigurationParams', params);
    return [{ warn: ['unused-label'] }];
  });
  for (const name of ['DiagnosticRefreshRequest', 'InlayHintRefreshRequest',
    'SemanticTokensRefreshRequest', 'CodeLensRefreshRequest']) {
    connection.onRequest(protocol[name].type, () => null);
  }
  connection.onUnhandledNotification((message) => { throw new Error(message.method); });
  connection.listen();
  return { server, connection };
}

async function hold(zirpa, textDocumentCapabilities, requests) {
  const { server, connection } = connect(zirpa);
  const dynamicRegistration = true;
  const refreshSupport = true;
  await ask(connection, 'InitializeRequest', {
    processId: process.pid,
    rootUri: null,
    capabilities: {
      general: { positionEncodings: ['utf-8', 'utf-16'] },
      textDocument: textDocumentCapabilities,
      workspace: {
        configuration: true,
        didChangeConfiguration: { dynamicRegistration },
        didChangeWatchedFiles: { dynamicRegistration },
        diagnostics: { refreshSupport },
        inlayHint: { refreshSupport },
        semanticTokens: { refreshSupport },
        codeLens: { refreshSupport },
      },
    },
  });
  await connection.sendNotification(protocol.InitializedNotification.type, {});
  await connection.sendNotification(protocol.DidOpenTextDocumentNotification.type,
    { textDocument: { uri: URI, languageId: 'szirpa', version: 1, text: SOURCE } });
  for (const [name, params] of requests) {
    await ask(connection, name, params);
  }
  await connection.sendNotification(protocol.DidChangeConfigurationNotification.type,
    { settings: { zirpa: { define: 7 } } });
  await connection.sendRequest(protocol.ShutdownRequest.type);
  const status = new Promise((resolve) => { server.on('exit', resolve); });
  await connection.sendNotification(protocol.ExitNotification.type);
  if (await status !== 0) {
    throw new Error(`status ${await status}`);
  }
}

async function main() {
  const hierarchical = { documentSymbol: { hierarchicalDocumentSymbolSupport: true } };
  await hold(process.argv[2], { ...hierarchical, diagnostic: {} }, REQUESTS);
  await hold(process.argv[2], {}, REQUESTS.slice(0, -1));
  const lines = messages.map(({ type, value }, i) =>
    `export const message${i}: ${type} = ${JSON.stringify(value, null, 1)};`);
  writeFileSync(process.argv[3], `import * as protocol from 'vscode-languageserver-protocol';

type ResultOf<T> =
  T extends protocol.ProtocolRequestType<any, infer R, any, any, any> ? R : never;

${lines.join('\n')}
`);
  process.exit(0);
}

main().catch((error) => { process.stderr.write(`${error.stack}\n`); process.exit(1); });
