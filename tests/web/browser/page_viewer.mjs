// A viewer sees the farm but no control to act on it; a POST forced from
// the page is refused by the server, and the farm does not change.
import { strict as assert } from "node:assert";
import { cellOf, firstReading, launch, openPage, rowTexts, run, secretHash, snapshot, startSim, startWeb, until, writeFile } from "./harness.mjs";

await run("page_viewer", 90000, async () => {
    const config = writeFile("web.yml", `basic_auth_users:\n  alice: ${secretHash}\n  victor: ${secretHash}\n`);
    const sim = await startSim(["--speed", "0"]);
    const web = await startWeb(sim.port, ["--web.config.file", config, "--web.operators", "alice"]);
    const browser = await launch();
    const page = await openPage(browser, { httpCredentials: { username: "victor", password: "secret" } });
    await page.goto(`http://127.0.0.1:${web.port}/batches`);
    const farm = await firstReading(web.port, "alice:secret");
    const pending = farm.batches.find((batch) => batch.status === "pending").batch_id;
    await until("batch rows", () => rowTexts(page, pending));
    assert.equal(await page.locator(".user").textContent(), "Signed in as victor (viewer)");

    const cell = cellOf(page, pending);
    await cell.click();
    assert.equal(await page.locator(".selection-count").textContent(), "1 selected");
    assert.equal(await page.locator(".action-buttons").innerHTML(), "");
    await cell.click({ button: "right" });
    const menu = page.getByRole("menu");
    assert.deepEqual(await menu.getByRole("menuitem").allTextContents(), ["Details..."]);
    await page.keyboard.press("Escape");
    await page.getByRole("link", { name: "Nodes" }).click();
    await until("node rows", () => rowTexts(page, 1));
    await cellOf(page, 1).click({ button: "right" });
    assert.equal(await page.getByRole("menu").count(), 0);

    const forced = await page.evaluate(async (id) => {
        const response = await fetch(`/api/v1/batches/${id}/pause`, {
            method: "POST", headers: { "Content-Type": "application/json" }, body: "{}",
        });
        return `${response.status} ${(await response.json()).detail}`;
    }, pending);
    assert.equal(forced, "403 victor is a viewer");
    await new Promise((resolve) => setTimeout(resolve, 1200));
    const after = await snapshot(web.port, "alice:secret");
    assert.equal(after.batches.find((batch) => batch.batch_id === pending).status, "pending");
});
