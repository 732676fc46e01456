// axe-core on every view, light and dark, with a menu and a confirmation
// open too: no serious or critical violation.
import { strict as assert } from "node:assert";
import { axeSource, cellOf, firstReading, launch, openPage, rowTexts, run, startSim, startWeb, until } from "./harness.mjs";

async function check(page, what) {
    // evaluate() runs outside the page's Content-Security-Policy, which
    // rightly refuses an injected script.
    if (!(await page.evaluate(() => typeof window.axe === "object")))
        await page.evaluate(axeSource);
    const result = await page.evaluate(() => window.axe.run(document, { resultTypes: ["violations"] }));
    const found = result.violations.map((violation) => `${violation.impact} ${violation.id}: ${violation.help} (${violation.nodes
        .map((node) => node.target.join(" ")).slice(0, 3).join(", ")})`);
    if (found.length > 0)
        console.log(`${what}:\n  ${found.join("\n  ")}`);
    const bad = result.violations.filter((violation) => violation.impact === "serious" || violation.impact === "critical");
    assert.deepEqual(bad.map((violation) => violation.id), [], `${what}: ${found.join("; ")}`);
    console.log(`${what}: no serious or critical violation (${result.violations.length} other)`);
}

await run("page_axe", 110000, async () => {
    const sim = await startSim(["--speed", "1"]);
    const web = await startWeb(sim.port);
    const farm = await firstReading(web.port);
    const browser = await launch();
    for (const colorScheme of ["light", "dark"]) {
        const page = await openPage(browser, { colorScheme });
        const base = `http://127.0.0.1:${web.port}`;
        await page.goto(`${base}/batches`);
        await until("rows", () => rowTexts(page, 1));
        await check(page, `batches, ${colorScheme}`);
        await cellOf(page, 2).click();
        await cellOf(page, 3).click({ modifiers: ["Control"] });
        await cellOf(page, 3).click({ button: "right" });
        await page.getByRole("menu").waitFor();
        await check(page, `batches with a menu, ${colorScheme}`);
        await page.keyboard.press("Escape");
        await page.locator(".action-buttons").getByRole("button", { name: "Abort" }).click();
        await page.getByRole("dialog").waitFor();
        await check(page, `batches with a confirmation, ${colorScheme}`);
        await page.getByRole("dialog").getByRole("button", { name: "Cancel" }).click();
        await page.goto(`${base}/nodes`);
        await until("node rows", () => rowTexts(page, 1));
        await check(page, `nodes, ${colorScheme}`);
        const working = farm.batches.find((batch) => batch.status === "inprogress") ?? farm.batches[0];
        await page.goto(`${base}/batches/${working.batch_id}`);
        await page.locator(".task").first().waitFor();
        await check(page, `details, ${colorScheme}`);
        await page.close();
    }
});
