// A working batch's progress, as the simulator reports it, is on the page
// within 2 s, again and again; no full reload happens on the way. The list
// out of sight is as current as the one in sight the moment it is shown:
// a node paused while the batches were shown is "Paused" on the nodes list,
// and a batch paused while the nodes were shown is "Paused" on the way back.
import { strict as assert } from "node:assert";
import { ctl, launch, openPage, rowTexts, run, snapshot, startSim, startWeb, until } from "./harness.mjs";

const simBatches = (simPort) => ctl(simPort, ["batches"], { json: true });

const simBatch = (simPort, id) => simBatches(simPort).find((batch) => batch.batch_id === id);

await run("page_live", 90000, async () => {
    const sim = await startSim(["--speed", "4"]);
    const web = await startWeb(sim.port, ["--interval", "0.5"]);
    const page = await openPage(await launch());
    await page.goto(`http://127.0.0.1:${web.port}/batches`);
    await page.evaluate(() => { window.sameDocument = true; });
    const working = await until("a working batch", () => simBatches(sim.port).find((batch) => batch.status === "inprogress"
        && batch.task.progress < 50));
    const id = working.batch_id;
    for (let round = 0; round < 4; ++round) {
        const progress = simBatch(sim.port, id).task.progress;
        const seenAt = Date.now();
        const cell = await until(`progress ${progress.toFixed(1)} % on the page`, async () => {
            const text = (await rowTexts(page, id))?.["Current Task"] ?? "";
            const shown = Number(/\(([\d.]+)%\)$/.exec(text)?.[1] ?? -1);
            return shown >= Number(progress.toFixed(1)) ? text : null;
        }, 2000);
        assert.match(cell, /^[A-Z][A-Za-z ]+ \(\d+\.\d%\)$/);
        console.log(`round ${round}: ${progress.toFixed(1)} % at the simulator, "${cell}" on the page after ${Date.now() - seenAt} ms`);
        await new Promise((resolve) => setTimeout(resolve, 700));
    }

    // Pauses a row while its list is out of sight, waits for the program to
    // have read it, then shows the list: the row is "Paused" within 1 s.
    const pausedOutOfSight = async (list, rowId, command, link) => {
        ctl(sim.port, [command, String(rowId)]);
        await until(`#${rowId} paused in the program's reading`, async () => {
            const farm = await snapshot(web.port);
            const idOf = (row) => (list === "nodes" ? row.node_id : row.batch_id);
            return farm[list].find((row) => idOf(row) === rowId)?.status === "paused";
        });
        await page.getByRole("link", { name: link }).click();
        return until(`#${rowId} paused on the ${list} list`, async () => {
            const status = (await rowTexts(page, rowId))?.["Status"];
            return status === "Paused" ? status : null;
        }, 1000);
    };
    const nodeId = ctl(sim.port, ["nodes"], { json: true }).find((node) => node.status === "inprogress").node_id;
    assert.equal(await pausedOutOfSight("nodes", nodeId, "pause-node", "Nodes"), "Paused");
    assert.equal(await pausedOutOfSight("batches", id, "pause-batch", "Batches"), "Paused");
    assert.equal(await page.evaluate(() => window.sameDocument), true);
});
