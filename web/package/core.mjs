// The module behind functions: bytes go in, an object in JSON and bytes come out.
//
// Every instance of the module has a memory of its own. A call that fails in there (it has run out of
// memory) leaves an instance that is of no use, so the next call gets a new one.

const encoder = new TextEncoder();
const decoder = new TextDecoder();

// What a C library says where there are no files. System calls give back the number below zero.
const NOT_THERE = 52;

const FUNCTIONS = {
  emscripten_notify_memory_growth: () => {},
  proc_exit: (status) => {
    throw new Error(`the module has ended with ${status}`);
  },
};

function otherFunction(name) {
  return name.startsWith("__syscall_") ? () => -NOT_THERE : () => NOT_THERE;
}

function importsOf(module, send) {
  const imports = { hxzirpa: { send } };
  for (const { module: from, name } of WebAssembly.Module.imports(module)) {
    imports[from] ??= {};
    imports[from][name] ??= FUNCTIONS[name] ?? otherFunction(name);
  }
  return imports;
}

function bytesOf(content) {
  if (typeof content === "string") {
    return encoder.encode(content);
  }
  if (content instanceof ArrayBuffer) {
    return new Uint8Array(content);
  }
  if (ArrayBuffer.isView(content)) {
    return new Uint8Array(content.buffer, content.byteOffset, content.byteLength);
  }
  throw new TypeError("a text or bytes are expected");
}

class Instance {
  #functions;

  // What the language server sends is given to the function, when the call that it comes from is over.
  constructor(module, send = () => {}) {
    const take = (begin, size) => send(decoder.decode(this.#view(begin, size)));
    this.#functions = new WebAssembly.Instance(module, importsOf(module, take)).exports;
    this.#functions._initialize();
  }

  // Memory moves when it grows, so a view of it is for at once. Addresses come as signed numbers.
  #view(begin, size) {
    return new Uint8Array(this.#functions.memory.buffer, begin >>> 0, size >>> 0);
  }

  put(...contents) {
    const pieces = contents.map(bytesOf);
    const size = pieces.reduce((sum, piece) => sum + piece.length, 0);
    const room = this.#view(this.#functions.room_for(size), size);
    let begin = 0;
    for (const piece of pieces) {
      room.set(piece, begin);
      begin += piece.length;
    }
  }

  call(name, ...values) {
    return this.#functions[name](...values);
  }

  answer() {
    const view = (name) => this.#view(this.call(name), this.call(`${name}_size`));
    return { json: JSON.parse(decoder.decode(view("json"))), bytes: view("bytes").slice() };
  }
}

// ---- The language server ----

// Work that is put off until whatever has arrived meanwhile has been taken. A timer would do, but a
// page's timers wait for some milliseconds.
function afterArrivals() {
  if (typeof setImmediate === "function") {
    return setImmediate;
  }
  const { port1, port2 } = new MessageChannel();
  const waiting = [];
  port1.onmessage = () => waiting.shift()();
  return (work) => {
    waiting.push(work);
    port2.postMessage(null);
  };
}

class Server {
  onmessage = null;
  onerror = null;

  #instance;
  #later = afterArrivals();
  #isWaiting = false;
  #sent = [];

  constructor(module, { pages = "" } = {}) {
    this.#instance = new Instance(module, (text) => this.#sent.push(text));
    this.#instance.put(pages);
    this.#instance.call("start");
  }

  // A message of the protocol: an object, or its text.
  send(message) {
    if (!this.#instance) {
      throw new Error("the server has ended");
    }
    const text = typeof message === "string" ? message : JSON.stringify(message);
    this.#carryOut(() => {
      this.#instance.put(text);
      this.#instance.call("take");
    });
    this.#workLater();
  }

  close() {
    this.#instance = undefined;
  }

  // What is sent goes out when the module can be called again, since whoever gets it may answer.
  #carryOut(work) {
    try {
      work();
    } catch (cause) {
      this.close();
      const error = new Error("the server has failed", { cause });
      if (!this.onerror) {
        throw error;
      }
      this.onerror(error);
    }
    while (this.#sent.length > 0) {
      const message = JSON.parse(this.#sent.shift());
      this.onmessage?.(message);
    }
  }

  #workLater() {
    if (this.#isWaiting || !this.#instance) {
      return;
    }
    this.#isWaiting = true;
    this.#later(() => {
      this.#isWaiting = false;
      let hasMore = false;
      if (this.#instance) {
        this.#carryOut(() => (hasMore = this.#instance.call("work") !== 0));
      }
      if (hasMore) {
        this.#workLater();
      }
    });
  }
}

// ---- Calls ----

function outputsOf({ json, bytes }) {
  const outputs = {};
  let begin = 0;
  for (const { kind, name, size } of json.outputs) {
    outputs[kind] = { name, bytes: bytes.slice(begin, begin + size) };
    begin += size;
  }
  return outputs;
}

class Assembler {
  #module;
  #instance;

  constructor(module) {
    this.#module = module;
  }

  #call(name, content, options) {
    const given = encoder.encode(JSON.stringify(options));
    const bytes = bytesOf(content);
    let answer;
    try {
      this.#instance ??= new Instance(this.#module);
      this.#instance.put(given, bytes);
      this.#instance.call(name, given.length);
      answer = this.#instance.answer();
    } catch (cause) {
      this.#instance = undefined;
      throw new Error(`${name} has failed; most probably there is not enough memory`, { cause });
    }
    if (answer.json.fault !== undefined) {
      throw new TypeError(answer.json.fault);
    }
    return answer;
  }

  assemble(source, options = {}) {
    const answer = this.#call("assemble", source, options);
    return { ...answer.json, outputs: outputsOf(answer) };
  }

  disassemble(program, options = {}) {
    return this.#call("disassemble", program, options).json;
  }

  server(options) {
    return new Server(this.#module, options);
  }
}

// ---- Loading ----

async function compileResponse(response) {
  if (!response.ok) {
    throw new Error(`${response.url} can't be loaded: ${response.status}`);
  }
  // Not every server knows what the module is.
  return response.headers.get("Content-Type") === "application/wasm"
    ? WebAssembly.compileStreaming(response)
    : WebAssembly.compile(await response.arrayBuffer());
}

// The functions of the package, where modules lie at `home` unless the caller has another one, and
// are fetched by the function.
export function packageOf(home, fetchModule) {
  async function compile(from) {
    const given = await from;
    if (given instanceof WebAssembly.Module) {
      return given;
    }
    const found =
      typeof given === "string" || given instanceof URL ? await fetchModule(given) : given;
    return typeof Response === "function" && found instanceof Response
      ? compileResponse(found)
      : WebAssembly.compile(found);
  }

  const load = async (from = home) => new Assembler(await compile(from));

  // A failed attempt is not kept: the network may come back.
  let loaded;
  const usual = async () => {
    loaded ??= load();
    try {
      return await loaded;
    } catch (error) {
      loaded = undefined;
      throw error;
    }
  };

  return {
    load,
    assemble: async (source, options) => (await usual()).assemble(source, options),
    disassemble: async (program, options) => (await usual()).disassemble(program, options),
    server: async (options) => (await usual()).server(options),
  };
}
