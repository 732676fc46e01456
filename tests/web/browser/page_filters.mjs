// Filters and sorting are in the address: set on the page, they survive a
// reload, and an address typed or linked opens the same view.
import { strict as assert } from "node:assert";
import { firstReading, launch, openPage, run, startSim, startWeb, until } from "./harness.mjs";

const shownIds = (page) => page.evaluate(() => [...document.querySelectorAll("[role=grid] [role=row][aria-rowindex]")]
    .filter((row) => row.getAttribute("aria-rowindex") !== "1")
    .sort((a, b) => Number(a.getAttribute("aria-rowindex")) - Number(b.getAttribute("aria-rowindex")))
    .map((row) => Number(row.querySelector("[role=gridcell]").textContent)));

await run("page_filters", 90000, async () => {
    const sim = await startSim(["--speed", "0"]);
    const web = await startWeb(sim.port);
    const farm = await firstReading(web.port);
    const page = await openPage(await launch());
    const base = `http://127.0.0.1:${web.port}`;
    await page.goto(`${base}/batches`);
    await until("rows", async () => (await shownIds(page)).length > 0);

    // Pending batches whose cells have "kproj", sorted by priority, highest first.
    await page.getByLabel("Filter").selectOption("pending");
    await page.getByLabel("Search").fill("KPROJ");
    await page.getByRole("columnheader", { name: "Priority" }).click();
    await page.getByRole("columnheader", { name: "Priority" }).click();
    assert.equal(new URL(page.url()).pathname + new URL(page.url()).search, "/batches?status=pending&q=KPROJ&sort=-priority");
    assert.equal(await page.getByRole("columnheader", { name: "Priority" }).getAttribute("aria-sort"), "descending");
    const expected = farm.batches.filter((batch) => batch.status === "pending")
        .sort((a, b) => b.priority - a.priority || a.batch_id - b.batch_id).map((batch) => batch.batch_id);
    assert.deepEqual(await shownIds(page), expected);
    assert.equal(await page.locator(".shown").textContent(), `Shown: ${expected.length} of 30`);

    await page.reload();
    await until("rows after the reload", async () => (await shownIds(page)).length > 0);
    assert.deepEqual(await shownIds(page), expected);
    assert.equal(await page.getByLabel("Filter").inputValue(), "pending");
    assert.equal(await page.getByLabel("Search").inputValue(), "KPROJ");
    assert.equal(await page.getByRole("columnheader", { name: "Priority" }).getAttribute("aria-sort"), "descending");

    // A text no row has.
    await page.goto(`${base}/nodes?q=no-such-host`);
    await page.locator(".empty").getByText("No node matches the filter").waitFor();
    assert.deepEqual(await shownIds(page), []);
    // An unknown sort key falls back to the id.
    const status = farm.nodes[0].status;
    const word = status === "inprogress" ? "working" : status;
    await page.goto(`${base}/nodes?sort=nonsense&status=${word}`);
    await until(`${word} nodes`, async () => (await shownIds(page)).length > 0);
    assert.deepEqual(await shownIds(page), farm.nodes.filter((node) => node.status === status).map((node) => node.node_id));
    assert.equal(await page.getByRole("columnheader", { name: "#", exact: true }).getAttribute("aria-sort"), "ascending");
});
