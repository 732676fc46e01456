// A batch's details follow the simulator while they are open, and the
// program stops asking the server for that batch once the view is left or
// the page is closed (counted between the program and the simulator).
import { strict as assert } from "node:assert";
import { countingRelay, ctl, launch, openPage, run, sleep, startSim, startWeb, until } from "./harness.mjs";

const simJson = (port, ...args) => ctl(port, args, { json: true });

await run("page_details", 90000, async () => {
    const sim = await startSim(["--speed", "4"]);
    const relay = await countingRelay(sim.port);
    const web = await startWeb(relay.port, ["--interval", "0.5"]);
    const browser = await launch();
    const page = await openPage(browser);
    const working = await until("a working batch", () => simJson(sim.port, "batches")
        .find((batch) => batch.status === "inprogress" && batch.task.progress < 50));
    const id = working.batch_id;
    await page.goto(`http://127.0.0.1:${web.port}/batches/${id}`);
    assert.equal(await page.getByRole("heading", { level: 1 }).textContent(), `Batch #${id}`);
    const status = simJson(sim.port, "status", String(id));
    await until("every task listed", async () => (await page.locator(".task").count()) === status.tasks.length);

    // The working task's elapsed time moves on the page as at the simulator.
    const working1 = status.tasks.findIndex((task) => task.status === "inprogress");
    assert.ok(working1 >= 0);
    const footer = page.locator(".task-footer").nth(working1);
    const first = await footer.textContent();
    assert.match(first, /^\d\d:\d\d:\d\d elapsed(, \d\d:\d\d:\d\d left)?$/);
    const moved = await until("the elapsed time moves", async () => {
        const text = await footer.textContent();
        return text !== first ? text : null;
    }, 3000);
    const elapsed = (text) => text.slice(0, 8).split(":").reduce((sum, part) => sum * 60 + Number(part), 0);
    const atSim = simJson(sim.port, "status", String(id)).tasks[working1].time_elapsed;
    assert.ok(Math.abs(elapsed(moved) - atSim) <= 6, `page ${moved}, simulator ${atSim}`);

    const asked = relay.count("getBatchStatus");
    await sleep(1500);
    assert.ok(relay.count("getBatchStatus") >= asked + 2, "followed while open");

    // Back to the list: within a reading the program stops asking.
    await page.getByRole("link", { name: "Back to the batch list" }).click();
    await page.getByRole("heading", { name: "Batches", level: 1 }).waitFor();
    await sleep(1000);
    const afterLeaving = relay.count("getBatchStatus");
    await sleep(2000);
    assert.equal(relay.count("getBatchStatus"), afterLeaving, "not followed after leaving the view");

    // Opened again, then the tab is closed.
    await page.goto(`http://127.0.0.1:${web.port}/batches/${id}`);
    await until("followed again", () => relay.count("getBatchStatus") > afterLeaving + 1);
    await page.close();
    await sleep(1000);
    const afterClosing = relay.count("getBatchStatus");
    await sleep(2000);
    assert.equal(relay.count("getBatchStatus"), afterClosing, "not followed after the page closed");
});
