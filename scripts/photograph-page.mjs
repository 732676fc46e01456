// Pictures of the web monitor's pages in Debian's headless Chromium, as a
// browser shows them once the first readings are in.
//   node scripts/photograph-page.mjs BASE_URL OUTPUT.png PATH [width=1400]
//        [height=800] [scheme=light|dark] [locale=en-US]
import { createRequire } from "node:module";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const require = createRequire(join(here, "../web/ui/package.json"));
const { chromium } = require("playwright-core");

const [base, output, path, ...rest] = process.argv.slice(2);
if (!base || !output || !path) {
    console.error("usage: photograph-page.mjs BASE_URL OUTPUT.png PATH [width=N] [height=N] [scheme=light|dark] [locale=TAG]");
    process.exit(2);
}
const options = Object.fromEntries(rest.map((option) => option.split("=")));
const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
try {
    const context = await browser.newContext({
        viewport: { width: Number(options.width ?? 1400), height: Number(options.height ?? 800) },
        colorScheme: options.scheme ?? "light",
        locale: options.locale ?? "en-US",
    });
    const page = await context.newPage();
    await page.goto(base + path);
    await page.locator(".as-of:not(:empty)").waitFor({ timeout: 15000 });
    await page.waitForTimeout(500);
    await page.screenshot({ path: output });
} finally {
    await browser.close();
}
