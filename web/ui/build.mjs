// Builds the page into OUT: index.html, assets/app.js (the page),
// assets/feed.js (its stream worker) and assets/app.css.
//   node build.mjs OUT
import { build } from "esbuild";
import { copyFileSync, mkdirSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const out = process.argv[2];
if (!out) {
    console.error("usage: node build.mjs OUT");
    process.exit(2);
}
mkdirSync(join(out, "assets"), { recursive: true });
// A script of the page: the page's own as a module, the worker's as a plain script.
const script = (entry, name, format) => build({
    entryPoints: [join(here, entry)],
    bundle: true,
    format,
    target: ["chrome100", "firefox100", "safari15"],
    minify: true,
    legalComments: "none",
    outfile: join(out, "assets", name),
    logLevel: "warning",
});
await script("src/main.ts", "app.js", "esm");
await script("src/feedworker.ts", "feed.js", "iife");
await build({
    entryPoints: [join(here, "style.css")],
    bundle: true,
    minify: true,
    outfile: join(out, "assets/app.css"),
    logLevel: "warning",
});
copyFileSync(join(here, "index.html"), join(out, "index.html"));
