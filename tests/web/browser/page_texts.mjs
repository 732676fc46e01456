// The page's cells read as the desktop's: every batch and node row equals
// korvane-ctl's table of the same farm (the tool prints the monitor's own
// cell texts), column by column.
import { strict as assert } from "node:assert";
import { ctl, firstReading, launch, openPage, rowTexts, run, startSim, startWeb, until } from "./harness.mjs";

// korvane-ctl's table as rows of header -> text, cut at the headers' columns.
function table(simPort, command, headers) {
    const lines = ctl(simPort, [command]).trimEnd().split("\n");
    const starts = headers.map((header) => lines[0].indexOf(header));
    assert.ok(starts.every((start, i) => start >= 0 && (i === 0 || start > starts[i - 1])), lines[0]);
    return lines.slice(1).map((line) => Object.fromEntries(headers.map((header, i) =>
        [header, line.slice(starts[i], i + 1 < starts.length ? starts[i + 1] : undefined).trim()])));
}

await run("page_texts", 90000, async () => {
    const sim = await startSim(["--speed", "0"]);
    const web = await startWeb(sim.port);
    await firstReading(web.port);
    const page = await openPage(await launch(), { viewport: { width: 1600, height: 1400 } });
    const base = `http://127.0.0.1:${web.port}`;
    for (const [view, command, headers] of [
        ["batches", "batches", ["#", "Project", "Started", "Status", "Priority", "Current Task", "Elapsed / Left", "Failures", "Nodes"]],
        ["nodes", "nodes", ["#", "Host", "Status", "Priority", "Batch #", "Progress", "Failures", "Last Error"]],
    ]) {
        const expected = table(sim.port, command, headers);
        assert.ok(expected.length >= 12, `${command}: ${expected.length} rows`);
        await page.goto(`${base}/${view}`);
        for (const row of expected) {
            const shown = await until(`${view} row ${row["#"]}`, () => rowTexts(page, row["#"]));
            assert.deepEqual(shown, row);
        }
        console.log(`${view}: ${expected.length} rows read as korvane-ctl prints them`);
    }
});
