// The page a browser loads, gzip-compressed, stays within 100 KB: the
// script and its stream worker, the style sheet, the page and the largest
// catalogue.
//   node bundle_size.mjs WEB_UI_DIR
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { gzipSync } from "node:zlib";
import { strict as assert } from "node:assert";

const dir = process.argv[2];
const gzipped = (path) => gzipSync(readFileSync(join(dir, path)), { level: 9 }).length;
const parts = { "index.html": gzipped("index.html"), "assets/app.js": gzipped("assets/app.js"),
    "assets/feed.js": gzipped("assets/feed.js"),
    "assets/app.css": gzipped("assets/app.css") };
const catalogues = readdirSync(join(dir, "assets/lang")).map((name) => [`assets/lang/${name}`, gzipped(`assets/lang/${name}`)]);
assert.equal(catalogues.length, 7);
const largest = catalogues.sort((a, b) => b[1] - a[1])[0];
parts[largest[0]] = largest[1];
const total = Object.values(parts).reduce((sum, size) => sum + size, 0);
for (const [name, size] of Object.entries(parts))
    console.log(`${name}: ${size} bytes gzip`);
console.log(`total: ${total} bytes gzip (limit 102400)`);
assert.ok(total <= 100 * 1024, `${total} bytes`);
