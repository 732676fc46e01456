// An operator acts from the page: pauses a batch from its menu, sets a
// node's priority, and pauses three batches at once after a confirmation
// that names all three, with each one's result.
import { strict as assert } from "node:assert";
import { cellOf, firstReading, launch, openPage, rowTexts, run, snapshot, startSim, startWeb, until } from "./harness.mjs";

await run("page_actions", 90000, async () => {
    const sim = await startSim(["--speed", "0"]);
    const web = await startWeb(sim.port);
    const page = await openPage(await launch());
    await page.goto(`http://127.0.0.1:${web.port}/batches`);
    const farm = await firstReading(web.port);
    const pending = farm.batches.filter((batch) => batch.status === "pending").map((batch) => batch.batch_id);
    assert.ok(pending.length >= 4, `pending batches: ${pending}`);
    const project = (id) => farm.batches.find((batch) => batch.batch_id === id).path.split("/").pop();
    await until("batch rows", () => rowTexts(page, pending[0]));

    // One batch, from its menu (right click).
    const [first, ...others] = pending;
    await cellOf(page, first).click({ button: "right" });
    const menu = page.getByRole("menu", { name: `Actions for #${first}` });
    assert.deepEqual(await menu.getByRole("menuitem").allTextContents(),
        ["Details...", "Pause", "Resume", "Abort", "Highest", "High", "Normal", "Low", "Lowest"]);
    await menu.getByRole("menuitem", { name: "Pause", exact: true }).click();
    await until("batch paused on the page", async () => (await rowTexts(page, first))?.Status === "Paused");
    assert.equal(await page.locator(".outcome").textContent(), `#${first} ${project(first)}: Accepted`);

    // Three at once, from the selection's buttons.
    const three = others.slice(0, 3);
    await cellOf(page, three[0]).click();
    await cellOf(page, three[1]).click({ modifiers: ["Control"] });
    await cellOf(page, three[2]).click({ modifiers: ["Control"] });
    assert.equal(await page.locator(".selection-count").textContent(), "3 selected");
    await page.locator(".action-buttons").getByRole("button", { name: "Pause" }).click();
    const dialog = page.getByRole("dialog");
    const names = three.map((id) => `#${id} ${project(id)}`);
    assert.equal(await dialog.locator("p").textContent(), `Pause 3 batches: ${names.join(", ")}`);
    await dialog.getByRole("button", { name: "Confirm" }).click();
    await dialog.getByRole("heading", { name: "Results" }).waitFor();
    assert.deepEqual(await dialog.locator(".results li").allTextContents(), names.map((name) => `${name}: Accepted`));
    await dialog.getByRole("button", { name: "Close" }).click();
    for (const id of three)
        await until(`batch ${id} paused`, async () => (await rowTexts(page, id))?.Status === "Paused");

    // A node's priority.
    await page.getByRole("link", { name: "Nodes" }).click();
    await until("node rows", () => rowTexts(page, 3));
    const before = farm.nodes.find((node) => node.node_id === 3).priority;
    const level = before === 1 ? "Highest" : "High";
    await cellOf(page, 3).click({ button: "right" });
    const nodeMenu = page.getByRole("menu", { name: "Actions for #3" });
    assert.deepEqual(await nodeMenu.getByRole("menuitem").allTextContents(),
        ["Pause", "Resume", "Stop", "Highest", "High", "Normal", "Low", "Lowest"]);
    await nodeMenu.getByRole("group", { name: "Set Priority" }).getByRole("menuitem", { name: level, exact: true }).click();
    await until(`node 3 at ${level}`, async () => (await rowTexts(page, 3))?.Priority === level);
    const after = await snapshot(web.port);
    assert.equal(after.nodes.find((node) => node.node_id === 3).priority, level === "High" ? 1 : 2);
});
