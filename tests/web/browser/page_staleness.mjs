// The page says when its data is stale, in bounded time, keeps the last
// known rows, and recovers by itself: a lost simulator, a broken stream
// with the farm healthy, and a program that hangs.
import { strict as assert } from "node:assert";
import { countingRelay, launch, openPage, rowTexts, run, sleep, snapshot, startSim, startWeb, statusWord, stop, until } from "./harness.mjs";

const Banner = /^Disconnected from server since (\d\d:\d\d:\d\d) — showing the last known state$/;

const rowCount = (page) => page.evaluate(() => document.querySelector("[role=grid]")?.getAttribute("aria-rowcount"));
const bannerText = (page) => page.evaluate(() => {
    const banner = document.querySelector(".stale-banner");
    return banner && !banner.hidden ? banner.textContent : "";
});
const asOf = (page) => page.locator(".as-of").textContent();
const announced = (page) => page.locator("[aria-live]").textContent();

await run("page_staleness", 110000, async () => {
    let sim = await startSim(["--speed", "0"]);
    const simPort = sim.port;
    const web = await startWeb(simPort, ["--interval", "0.5"]);
    const relay = await countingRelay(web.port);
    const page = await openPage(await launch());
    const streams = [];
    page.on("request", (request) => {
        if (request.url().includes("/api/v1/events"))
            streams.push(request.headers()["last-event-id"] ?? null);
    });
    await page.goto(`http://127.0.0.1:${relay.port}/batches`);
    await page.evaluate(() => { window.sameDocument = true; });
    await until("30 batches", async () => (await rowCount(page)) === "31");
    const before = await rowTexts(page, 4);
    await until("data as of a time", async () => /^data as of \d\d:\d\d:\d\d$/.test(await asOf(page)));

    // The simulator is gone: the banner within 3 s, the rows stay, the time stops.
    await stop(sim.child);
    const lost = Date.now();
    const banner = await until("the banner", async () => Banner.test(await bannerText(page)) && await bannerText(page), 3000);
    console.log(`banner after ${Date.now() - lost} ms: ${banner}`);
    assert.equal(await rowCount(page), "31");
    assert.deepEqual(await rowTexts(page, 4), before);
    assert.equal(await announced(page), banner);
    const frozen = await asOf(page);
    await sleep(1500);
    assert.equal(await asOf(page), frozen);

    // It comes back on the same port: the banner goes, the rows are fresh.
    sim = await startSim(["--speed", "0"], simPort);
    await until("the banner gone", async () => (await bannerText(page)) === "", 20000);
    assert.equal(await announced(page), "Connected to the server again");
    await until("the time moving again", async () => (await asOf(page)) !== frozen);
    const fresh = await snapshot(web.port);
    const shown = await rowTexts(page, 4);
    assert.equal(shown.Status, statusWord(fresh.batches.find((batch) => batch.batch_id === 4).status));
    assert.equal(await page.evaluate(() => window.sameDocument), true);

    // The stream breaks while the farm is healthy: the page asks again with
    // the last id it has, and carries on without a reload.
    const opened = streams.length;
    relay.cut();
    await until("a new stream", () => streams.length > opened, 5000);
    const resumedFrom = streams[streams.length - 1];
    assert.match(resumedFrom ?? "", /^\d+$/);
    await until("the banner gone after the break", async () => (await bannerText(page)) === "", 5000);
    assert.equal(await page.evaluate(() => window.sameDocument), true);
    assert.equal(await rowCount(page), "31");

    // The program hangs: nothing arrives, not even its heartbeat; the page
    // notices by itself within 2 intervals and 6 s, and recovers after.
    web.child.kill("SIGSTOP");
    const hung = Date.now();
    await until("the banner for a silent stream", async () => Banner.test(await bannerText(page)), 9000);
    console.log(`silent stream noticed after ${Date.now() - hung} ms`);
    web.child.kill("SIGCONT");
    await until("the banner gone after the hang", async () => (await bannerText(page)) === "", 20000);
    assert.equal(await page.evaluate(() => window.sameDocument), true);
});
