// A small stand-in for the editor's own module, as far as the extension and its client library use it:
// documents, edits, settings, what is registered, what is shown. Whatever it does not know is there,
// and does nothing.
"use strict";

const files = require("fs/promises");
const { fileURLToPath, pathToFileURL } = require("url");

// ---- Texts ----

class Position {
  constructor(line, character) {
    Object.assign(this, { line, character });
  }
}

class Range {
  constructor(...ends) {
    const [start, end] =
      ends.length === 2 ? ends : [new Position(ends[0], ends[1]), new Position(ends[2], ends[3])];
    Object.assign(this, { start, end });
  }
}

class Uri {
  constructor(scheme, path, query = "") {
    Object.assign(this, { scheme, path, query, authority: "", fragment: "" });
  }
  static file(path) {
    return new Uri("file", path);
  }
  static parse(text) {
    const [, scheme, rest, query] = /^([a-z-]+):(?:\/\/)?([^?]*)\??(.*)$/.exec(text);
    return new Uri(scheme, decodeURIComponent(rest), decodeURIComponent(query));
  }
  static joinPath(uri, ...parts) {
    return uri.with({ path: require("path").posix.join(uri.path, ...parts) });
  }
  with(parts) {
    return Object.assign(new Uri(this.scheme, this.path, this.query), parts);
  }
  get fsPath() {
    return fileURLToPath(`file://${this.path}`);
  }
  toString() {
    const query = this.query && `?${encodeURIComponent(this.query)}`;
    return `${this.scheme}:${pathToFileURL(this.path).href.replace("file:", "")}${query}`;
  }
}

class TextDocument {
  constructor(uri, text) {
    Object.assign(this, { uri, text, version: 1, languageId: "szirpa", isClosed: false });
    this.fileName = uri.path;
  }
  getText() {
    return this.text;
  }
  offsetAt({ line, character }) {
    const ahead = this.text.split("\n").slice(0, line);
    return ahead.reduce((size, each) => size + each.length + 1, character);
  }
  async save() {
    require("fs").writeFileSync(this.uri.fsPath, this.text);
    return true;
  }
}

class WorkspaceEdit {
  constructor() {
    this.edits = [];
  }
  set(uri, edits) {
    this.edits.push(...edits.map((edit) => (Array.isArray(edit) ? edit[0] : edit)));
  }
  replace(uri, range, newText) {
    this.edits.push({ range, newText });
  }
}

// ---- Events ----

class EventEmitter {
  constructor() {
    this.listeners = new Set();
    this.event = (listener, self) => {
      const bound = self ? listener.bind(self) : listener;
      this.listeners.add(bound);
      return { dispose: () => this.listeners.delete(bound) };
    };
  }
  fire(event) {
    return Promise.all([...this.listeners].map((listener) => listener(event)));
  }
  dispose() {
    this.listeners.clear();
  }
}

const events = {
  opened: new EventEmitter(),
  changed: new EventEmitter(),
  configured: new EventEmitter(),
};
const nothing = { dispose() {} };

// ---- What the tests look at and change ----

const state = {
  settings: {},
  documents: [],
  providers: {},
  commands: {},
  contents: {},
  diagnostics: new Map(),
  messages: [],
  shown: [],
  panels: [],
  tasks: [],
};

// Members that are missing do nothing: events that never come, providers that are kept by name.
function filled(name, members) {
  return new Proxy(members, {
    get(known, member) {
      if (member in known || typeof member === "symbol") {
        return known[member];
      }
      if (/^register\w+Provider$/.test(member)) {
        return (selector, provider) => {
          state.providers[member.replace(/^register|Provider$/g, "")] = provider;
          return nothing;
        };
      }
      return /^on[A-Z]/.test(member) ? () => nothing : undefined;
    },
  });
}

function setting(section, name) {
  return name.split(".").reduce((value, key) => value?.[key], state.settings[section]);
}

const workspace = filled("workspace", {
  textDocuments: state.documents,
  workspaceFolders: undefined,
  isTrusted: true,
  fs: {
    readFile: (uri) => files.readFile(uri.fsPath),
    writeFile: (uri, bytes) => files.writeFile(uri.fsPath, bytes),
    delete: (uri) => files.unlink(uri.fsPath),
  },
  onDidOpenTextDocument: events.opened.event,
  onDidChangeTextDocument: events.changed.event,
  onDidChangeConfiguration: events.configured.event,
  getConfiguration: (section) => ({
    ...state.settings[section],
    get: (name, other) => setting(section, name) ?? other,
  }),
  createFileSystemWatcher: () => filled("watcher", nothing),
  registerTextDocumentContentProvider: (scheme, provider) => {
    state.contents[scheme] = provider;
    return nothing;
  },
  openTextDocument: async (uri) => {
    const text = await state.contents[uri.scheme].provideTextDocumentContent(uri);
    return { ...new TextDocument(uri, text), languageId: "plaintext" };
  },
});

const window = filled("window", {
  activeTextEditor: undefined,
  visibleTextEditors: [],
  tabGroups: filled("tabGroups", { all: [] }),
  createOutputChannel: () => filled("channel", { append() {}, appendLine() {}, show() {}, ...nothing }),
  showTextDocument: async (document, options) => state.shown.push({ document, options }),
  createWebviewPanel: (kind, title) => {
    const panel = filled("panel", { title, webview: { html: "" } });
    state.panels.push(panel);
    return panel;
  },
});
for (const kind of ["Error", "Warning", "Information"]) {
  window[`show${kind}Message`] = async (text) => {
    state.messages.push(text);
  };
}

const languages = filled("languages", {
  match: (selector, document) =>
    [selector].flat().some((each) => each.language === document.languageId) ? 10 : 0,
  createDiagnosticCollection: () => ({
    set: (uri, found) => state.diagnostics.set(uri.toString(), found),
    delete: (uri) => state.diagnostics.delete(uri.toString()),
    clear: () => state.diagnostics.clear(),
    forEach() {},
    get: () => undefined,
    has: () => false,
    dispose() {},
  }),
});

const commands = filled("commands", {
  registerCommand: (name, action) => {
    state.commands[name] = action;
    return nothing;
  },
});

// ---- The user's hand ----

function open(document) {
  state.documents.push(document);
  window.activeTextEditor = { document };
  window.visibleTextEditors = [window.activeTextEditor];
  const tab = { input: new known.TabInputText(document.uri), isActive: true };
  window.tabGroups.all.push({ tabs: [tab], activeTab: tab });
  return events.opened.fire(document);
}

// Edits count from the text as it was.
async function change(document, edits) {
  const contentChanges = edits
    .map(({ range, newText }) => ({
      range,
      rangeOffset: document.offsetAt(range.start),
      rangeLength: document.offsetAt(range.end) - document.offsetAt(range.start),
      text: newText,
    }))
    .sort((one, other) => other.rangeOffset - one.rangeOffset);
  for (const { rangeOffset, rangeLength, text } of contentChanges) {
    const rest = document.text.slice(rangeOffset + rangeLength);
    document.text = document.text.slice(0, rangeOffset) + text + rest;
  }
  document.version += 1;
  await events.changed.fire({ document, contentChanges });
}

async function configure(settings) {
  state.settings = settings;
  await events.configured.fire({ affectsConfiguration: () => true });
}

// ---- Classes ----

class Plain {
  constructor(...values) {
    this.values = values;
  }
}

const fields = {
  CodeAction: ["title", "kind"],
  Diagnostic: ["range", "message", "severity"],
  InlayHint: ["position", "label", "kind"],
  Location: ["uri", "range"],
  ProcessExecution: ["process", "args", "options"],
  RelativePattern: ["base", "pattern"],
  TabInputText: ["uri"],
  Task: ["definition", "scope", "name", "source", "execution"],
  TextEdit: ["range", "newText"],
};

// A class whose constructor keeps its arguments under these names.
function record(names) {
  return class {
    constructor(...values) {
      names.forEach((name, index) => {
        this[name] = values[index];
      });
    }
  };
}

class CancellationTokenSource {
  constructor() {
    this.token = { isCancellationRequested: false, onCancellationRequested: () => nothing };
  }
  cancel() {}
  dispose() {}
}

class CodeActionKind {
  constructor(value) {
    this.value = value;
  }
  append(part) {
    return new CodeActionKind(`${this.value}.${part}`);
  }
}
CodeActionKind.Empty = new CodeActionKind("");
CodeActionKind.QuickFix = new CodeActionKind("quickfix");

const known = {
  version: "1.82.0",
  env: { language: "en", appName: "stand-in" },
  extensions: filled("extensions", { getExtension: () => undefined, all: [] }),
  Position, Range, Uri, WorkspaceEdit, EventEmitter, CancellationTokenSource, CodeActionKind,
  workspace, window, languages, commands,
  tasks: { executeTask: async (task) => state.tasks.push(task) },
  Disposable: class { constructor(dispose) { this.dispose = dispose; } static from() { return nothing; } },
  DiagnosticSeverity: { Error: 0, Warning: 1, Information: 2, Hint: 3 },
  DiagnosticTag: { Unnecessary: 1, Deprecated: 2 },
  ViewColumn: { Beside: -2 },
  TaskScope: { Workspace: 2 },
};
for (const [name, names] of Object.entries(fields)) {
  known[name] = record(names);
}
known.TextEdit.replace = (range, text) => new known.TextEdit(range, text);

// Any other class takes anything, and as an enumeration has every member.
module.exports = new Proxy(known, {
  get(all, name) {
    if (!(name in all) && typeof name === "string" && /^[A-Z]/.test(name)) {
      all[name] = new Proxy(class extends Plain {}, {
        get: (type, member) => (member in type || typeof member === "symbol" ? type[member] : member),
      });
    }
    return all[name];
  },
});
module.exports.hand = { state, open, change, configure, TextDocument };
