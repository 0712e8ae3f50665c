// The service worker: the files of the site, so that it opens without a network.

declare const FILES: string[];
declare const VERSION: string;

const scope = self as unknown as ServiceWorkerGlobalScope;
// Other pages of the same address keep theirs.
const PREFIX = "hxzirpa-";
const NAME = PREFIX + VERSION;

async function store(): Promise<void> {
  const cache = await caches.open(NAME);
  // A copy of the browser's own may be an older one.
  await cache.addAll(["./", ...FILES].map((file) => new Request(file, { cache: "reload" })));
  await scope.skipWaiting();
}

async function dropOthers(): Promise<void> {
  const names = await caches.keys();
  const old = names.filter((name) => name.startsWith(PREFIX) && name !== NAME);
  await Promise.all(old.map((name) => caches.delete(name)));
  await scope.clients.claim();
}

async function answer(request: Request): Promise<Response> {
  const cache = await caches.open(NAME);
  return (await cache.match(request, { ignoreSearch: true })) ?? fetch(request);
}

scope.addEventListener("install", (event) => event.waitUntil(store()));
scope.addEventListener("activate", (event) => event.waitUntil(dropOthers()));
scope.addEventListener("fetch", (event) => {
  if (event.request.method === "GET" && event.request.url.startsWith(scope.registration.scope)) {
    event.respondWith(answer(event.request));
  }
});
