// Keys only, as a keyboard user meets the page: Tab reaches the batch
// list, the arrows reach a row, Shift+F10 opens its menu, the menu pauses
// it, Enter opens its details, and the way back lands on the same row.
import { strict as assert } from "node:assert";
import { firstReading, launch, openPage, rowTexts, run, startSim, startWeb, until } from "./harness.mjs";

// What has the focus: its role, its text, the id of its row, and whether it shows.
const focused = (page) => page.evaluate(() => {
    const element = document.activeElement;
    const row = element?.closest("[role=row]");
    return {
        role: element?.getAttribute("role") ?? element?.tagName.toLowerCase(),
        text: element?.textContent ?? "",
        row: row ? row.querySelector("[role=gridcell]")?.textContent ?? "header" : null,
        outline: element ? getComputedStyle(element).outlineStyle : "",
    };
});

await run("page_keys", 90000, async () => {
    const sim = await startSim(["--speed", "0"]);
    const web = await startWeb(sim.port);
    const farm = await firstReading(web.port);
    const target = farm.batches.filter((batch) => batch.status === "pending")[1].batch_id;
    const page = await openPage(await launch());
    await page.goto(`http://127.0.0.1:${web.port}/batches`);
    await until("rows", () => rowTexts(page, target));

    const stops = [];
    for (let i = 0; i < 15; ++i) {
        await page.keyboard.press("Tab");
        const now = await focused(page);
        stops.push(`${now.role}:${now.text}`);
        if (now.role === "columnheader")
            break;
    }
    assert.deepEqual(stops.slice(0, 2), ["a:Batches", "a:Nodes"]);
    assert.equal(stops[stops.length - 1], "columnheader:#");
    assert.ok(stops.length <= 8, stops.join(" | "));

    for (let i = 0; i < target; ++i)
        await page.keyboard.press("ArrowDown");
    let now = await focused(page);
    assert.deepEqual([now.role, now.row, now.text], ["gridcell", String(target), String(target)]);
    assert.equal(now.outline, "solid");
    await page.keyboard.press("ArrowRight");
    now = await focused(page);
    assert.equal(now.text, farm.batches.find((batch) => batch.batch_id === target).path.split("/").pop());

    await page.keyboard.press("Shift+F10");
    now = await focused(page);
    assert.deepEqual([now.role, now.text], ["menuitem", "Details..."]);
    await page.keyboard.press("ArrowDown");
    assert.equal((await focused(page)).text, "Pause");
    await page.keyboard.press("Enter");
    now = await focused(page);
    assert.deepEqual([now.role, now.row], ["gridcell", String(target)]);
    await until("paused", async () => (await rowTexts(page, target))?.Status === "Paused");

    await page.keyboard.press("Enter");
    await page.getByRole("heading", { name: `Batch #${target}` }).waitFor();
    now = await focused(page);
    assert.deepEqual([now.role, now.text], ["h1", `Batch #${target}`]);
    assert.equal(new URL(page.url()).pathname, `/batches/${target}`);

    await page.keyboard.press("Shift+Tab");
    assert.equal((await focused(page)).text, "Back to the batch list");
    await page.keyboard.press("Enter");
    await until("back in the list", async () => (await focused(page)).row === String(target));
    assert.equal(new URL(page.url()).pathname, "/batches");

    // The menu key, and Escape back to the row.
    await page.keyboard.press("ContextMenu");
    assert.equal((await focused(page)).role, "menuitem");
    await page.keyboard.press("Escape");
    now = await focused(page);
    assert.deepEqual([now.role, now.row], ["gridcell", String(target)]);
    assert.equal(await page.getByRole("menu").count(), 0);
});
