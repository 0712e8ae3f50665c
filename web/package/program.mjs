#!/usr/bin/env node
// The program under node. Its calls of the system are carried out as they are, without a file system
// of its own in between; names and arguments are bytes.
//
// The module of node's that is called process is not imported: that would open its streams, which
// keep descriptors from waiting for whoever reads them.
import fs from "node:fs";
import { isatty } from "node:tty";

// Failures that the program tells apart, as its C library numbers them.
const NUMBERS = {
  EEXIST: 20, EINTR: 27, EINVAL: 28, EIO: 29, EISDIR: 31, ELOOP: 32, EMFILE: 33, ENAMETOOLONG: 37,
  ENFILE: 41, ENOENT: 44, ENOMEM: 48, ENOTDIR: 54, ERANGE: 68,
};

// Flags of open(), by their numbers there.
const FLAGS = [
  [0o1, fs.constants.O_WRONLY],
  [0o100, fs.constants.O_CREAT],
  [0o200, fs.constants.O_EXCL],
  [0o1000, fs.constants.O_TRUNC],
];

let functions; // of the program

// Memory moves when it grows, so a view of it is for at once.
const memory = (begin, size) =>
  Buffer.from(functions.memory.buffer, begin >>> 0, size === undefined ? undefined : size >>> 0);

function text(begin) {
  const rest = memory(begin);
  return Buffer.from(rest.subarray(0, rest.indexOf(0)));
}

function putStatus(begin, status) {
  const { dev, ino, mode, nlink, uid, gid, size } = status;
  new BigUint64Array(functions.memory.buffer, begin >>> 0, 7).set(
    [dev, ino, mode, nlink, uid, gid, size].map((value) => BigInt.asUintN(64, value)),
  );
  return 0;
}

function putBytes(bytes, begin, size) {
  return bytes.copy(memory(begin, size));
}

// The path as bytes: node's own would be a text. Where the system has no such link, texts will do.
function workingDirectory() {
  const path = process.cwd();
  return path.includes("\uFFFD") ? fs.readlinkSync("/proc/self/cwd", "buffer") : Buffer.from(path);
}

const bigint = { bigint: true };
const calls = {
  open: (path, flags, mode) =>
    fs.openSync(
      text(path),
      FLAGS.reduce((all, [bit, flag]) => all | (flags & bit ? flag : 0), 0),
      mode,
    ),
  close: (descriptor) => fs.closeSync(descriptor),
  read: (descriptor, bytes, size) => fs.readSync(descriptor, memory(bytes, size)),
  write: (descriptor, bytes, size) => fs.writeSync(descriptor, memory(bytes, size)),
  fstat: (descriptor, status) => putStatus(status, fs.fstatSync(descriptor, bigint)),
  stat: (path, status) => putStatus(status, fs.statSync(text(path), bigint)),
  lstat: (path, status) => putStatus(status, fs.lstatSync(text(path), bigint)),
  readlink: (path, target, size) => putBytes(fs.readlinkSync(text(path), "buffer"), target, size),
  unlink: (path) => fs.unlinkSync(text(path)),
  rename: (from, to) => fs.renameSync(text(from), text(to)),
  truncate: (path) => fs.truncateSync(text(path)),
  ftruncate: (descriptor) => fs.ftruncateSync(descriptor),
  fchown: (descriptor, user, group) => fs.fchownSync(descriptor, user >>> 0, group >>> 0),
  fchmod: (descriptor, mode) => fs.fchmodSync(descriptor, mode),
  getcwd: (path, size) => {
    const bytes = Buffer.concat([workingDirectory(), Buffer.of(0)]);
    return bytes.length > size ? -NUMBERS.ERANGE : putBytes(bytes, path, size);
  },
  geteuid: () => process.geteuid?.() ?? 0,
  getpid: () => process.pid,
  isatty: (descriptor) => (isatty(descriptor) ? 1 : 0),
};

const host = Object.fromEntries(
  Object.entries(calls).map(([name, call]) => [
    name,
    (...values) => {
      try {
        return call(...values) ?? 0;
      } catch (error) {
        if (error.syscall === undefined) {
          throw error;
        }
        return -(NUMBERS[error.code] ?? NUMBERS.EIO);
      }
    },
  ]),
);

// Node's arguments are texts; the system shows those that it was started with.
function givenWords() {
  const words = process.argv.slice(2).map((word) => Buffer.from(`${word}\0`));
  if (process.argv.some((word) => word.includes("\uFFFD"))) {
    const bytes = fs.readFileSync("/proc/self/cmdline", "latin1");
    const all = bytes.split("\0").slice(0, -1);
    return all.slice(all.length - words.length).map((word) => Buffer.from(`${word}\0`, "latin1"));
  }
  return words;
}

function start() {
  const module = new WebAssembly.Module(
    fs.readFileSync(new URL("./program.wasm", import.meta.url)),
  );
  functions = new WebAssembly.Instance(module, {
    host,
    env: { emscripten_notify_memory_growth: () => {} },
    wasi_snapshot_preview1: {
      proc_exit: (status) => process.exit(status),
      fd_close: () => NUMBERS.EIO,
      fd_seek: () => NUMBERS.EIO,
      fd_write: () => NUMBERS.EIO,
    },
  }).exports;
  functions._initialize();
  const words = Buffer.concat([Buffer.from("HXzirpa\0"), ...givenWords()]);
  const room = functions.room_for(words.length);
  words.copy(memory(room, words.length));
  return functions.run() & 0xff;
}

// A write that fails for the size of the file is reported as one; node ignores SIGPIPE itself.
process.on("SIGXFSZ", () => {});
process.exit(start());
