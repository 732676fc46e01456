// Every view in Japanese and Russian, chosen from the browser's language:
// the page's language is set, and no text the catalogue translates shows in
// English. A screenshot of each view goes to SCREENSHOT_DIR, to be looked at.
//   node page_languages.mjs SOURCE_DIR WEB_PROGRAM SIM_PROGRAM SCREENSHOT_DIR
import { mkdirSync, readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { strict as assert } from "node:assert";
import { firstReading, launch, openPage, rowTexts, run, sourceDir, startSim, startWeb, statusWord, until } from "./harness.mjs";

const screenshots = process.argv[5];
mkdirSync(screenshots, { recursive: true });

// The English fragments of every text the language translates differently:
// "Disconnected from server since %1 — showing…" gives its two fixed parts.
function englishFragments(english, translated) {
    const fragments = new Set();
    for (const [key, value] of Object.entries(english.texts)) {
        const other = translated.texts[key];
        const forms = typeof value === "string" ? [value] : Object.values(value);
        const otherForms = typeof other === "string" ? [other] : Object.values(other ?? {});
        for (const form of forms) {
            if (otherForms.includes(form))
                continue;
            for (const part of form.split(/%[0-9n]/)) {
                if (part.trim().length >= 4)
                    fragments.add(part.trim());
            }
        }
    }
    return [...fragments];
}

// The page's visible texts and the names it gives controls.
const pageTexts = (page) => page.evaluate(() => [document.body.innerText,
    ...[...document.querySelectorAll("[aria-label], [placeholder]")]
        .map((element) => `${element.getAttribute("aria-label") ?? ""} ${element.getAttribute("placeholder") ?? ""}`)]
    .join("\n"));

await run("page_languages", 110000, async () => {
    const sim = await startSim(["--speed", "1"]);
    const web = await startWeb(sim.port);
    const farm = await firstReading(web.port);
    const base = `http://127.0.0.1:${web.port}`;
    const english = await (await fetch(`${base}/assets/lang/en.json`)).json();
    // Every key the page's sources name is in the catalogue, or it would show its English source everywhere.
    const sources = readdirSync(join(sourceDir, "web/ui/src")).map((name) => readFileSync(join(sourceDir, "web/ui/src", name), "utf8"));
    const keys = sources.flatMap((text) => [...text.matchAll(/"((?:Web|Monitor|TaskStatusWidget|BatchDetailsDialog)\/[^"$]+)"/g)]
        .map((match) => match[1]));
    assert.ok(keys.length > 50, `${keys.length} keys`);
    assert.deepEqual(keys.filter((key) => !(key in english.texts)), []);
    const browser = await launch();
    const working = farm.batches.find((batch) => batch.status === "inprogress") ?? farm.batches[0];
    for (const [language, locale, tag] of [["ja", "ja-JP", "ja"], ["ru", "ru-RU", "ru"]]) {
        const catalogue = await (await fetch(`${base}/assets/lang/${language}.json`)).json();
        const fragments = englishFragments(english, catalogue);
        assert.ok(fragments.length > 40, `${language}: ${fragments.length} fragments`);
        const page = await openPage(browser, { locale });
        for (const [view, path] of [["batches", "/batches"], ["nodes", "/nodes"], ["details", `/batches/${working.batch_id}`]]) {
            await page.goto(base + path);
            if (view === "details")
                await page.locator(".task").first().waitFor();
            else
                await until(`${view} rows`, () => rowTexts(page, 1));
            await until("data as of", async () => (await page.locator(".as-of").textContent()) !== "");
            assert.equal(await page.evaluate(() => document.documentElement.lang), tag);
            const text = await pageTexts(page);
            // Whole words only: the status words ("Paused") stay English on purpose.
            const english = fragments.filter((fragment) => new RegExp(`(^|[^A-Za-z])${fragment
                .replace(/[.*+?^${}()|[\]\\]/g, "\\$&")}($|[^A-Za-z])`).test(text));
            assert.deepEqual(english, [], `${language} ${view} shows English: ${english.join(" | ")}`);
            await page.screenshot({ path: join(screenshots, `${language}-${view}.png`) });
        }
        // The status words stay as they are in every language.
        await page.goto(`${base}/batches`);
        const first = Object.values(await until("rows", () => rowTexts(page, 1)));
        const status = statusWord(farm.batches[0].status);
        assert.equal(first[3], status);
        await page.close();
    }
});
