// A web server as plain as there are: files below a directory, at some address.
"use strict";

const fs = require("fs");
const http = require("http");
const path = require("path");

const TYPES = {
  ".css": "text/css", ".html": "text/html", ".js": "text/javascript", ".svg": "image/svg+xml",
  ".txt": "text/plain", ".wasm": "application/wasm",
};

exports.serve = async function (site, base) {
  const server = http.createServer((request, response) => {
    const { pathname } = new URL(request.url, "http://page");
    const name = path.join(site, pathname.slice(base.length) || "index.html");
    if (!pathname.startsWith(base) || !fs.existsSync(name)) {
      response.writeHead(404).end();
      return;
    }
    response.writeHead(200, { "content-type": TYPES[path.extname(name)] });
    fs.createReadStream(name).pipe(response);
  });
  await new Promise((done) => server.listen(0, "127.0.0.1", done));
  return {
    address: `http://127.0.0.1:${server.address().port}${base}`,
    close: () => {
      server.close();
      server.closeAllConnections();
    },
  };
};
