// In Debian's Chromium, a page from another origin (a second port of the
// same host) tries to pause a batch with the signed-in operator's
// credentials, once by fetch() and once by a form. Both must fail, and the
// farm must not change.
//   node cross_site.mjs SOURCE_DIR WEB_PROGRAM SIM_PROGRAM
import { spawn } from "node:child_process";
import { createServer } from "node:http";
import { createRequire } from "node:module";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { once } from "node:events";
import { strict as assert } from "node:assert";

const [sourceDir, webProgram, simProgram] = process.argv.slice(2);
const require = createRequire(join(sourceDir, "web/ui/package.json"));
const { chromium } = require("playwright-core");

// "secret", bcrypt, cost 4.
const secretHash = "$2b$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";
const children = [];
const dir = mkdtempSync(join(tmpdir(), "korvane-cross-site-"));

// Starts a program and waits for its "listening on ADDR:PORT" line.
async function start(program, args) {
    const child = spawn(program, args, { stdio: ["ignore", "pipe", "pipe"] });
    children.push(child);
    let output = "";
    child.stdout.setEncoding("utf8");
    for await (const chunk of child.stdout) {
        output += chunk;
        const match = output.match(/listening on [^\n]*:(\d+)\n/);
        if (match)
            return Number(match[1]);
    }
    throw new Error(`${program} did not start`);
}

async function batchStatus(port, id) {
    const response = await fetch(`http://127.0.0.1:${port}/api/v1/snapshot`, {
        headers: { Authorization: "Basic " + Buffer.from("alice:secret").toString("base64") },
    });
    const snapshot = await response.json();
    return snapshot.batches.find((batch) => batch.batch_id === id)?.status;
}

const timer = setTimeout(() => {
    console.error("cross_site: timed out");
    process.exit(1);
}, 90000);
let browser;
try {
    writeFileSync(join(dir, "web.yml"), `basic_auth_users:\n  alice: ${secretHash}\n`);
    const simPort = await start(simProgram, ["--listen", "127.0.0.1:0", "--seed", "1", "--speed", "0"]);
    const webPort = await start(webProgram, ["--server", `127.0.0.1:${simPort}`, "--web.listen-address",
        "127.0.0.1:0", "--web.config.file", join(dir, "web.yml"), "--web.operators", "alice",
        "--interval", "0.2"]);
    const target = `http://127.0.0.1:${webPort}/api/v1/batches/4/pause`;
    while ((await batchStatus(webPort, 4)) === undefined)
        await new Promise((resolve) => setTimeout(resolve, 50));
    assert.equal(await batchStatus(webPort, 4), "pending");

    // The other site: a page with a script and a form aimed at the web monitor.
    const page = `<!doctype html><meta charset="utf-8"><title>elsewhere</title>
<form id="form" method="post" action="${target}" target="sink"><input name="ids" value="4"></form>
<iframe name="sink"></iframe>
<script src="/attack.js"></script>`;
    const script = `window.fetchResult = fetch(${JSON.stringify(target)}, {method: "POST", credentials: "include",
    headers: {"Content-Type": "application/json"}, body: "{}"}).then(r => "status " + r.status, e => "failed: " + e.name);
window.plainResult = fetch(${JSON.stringify(target)}, {method: "POST", credentials: "include", mode: "no-cors",
    headers: {"Content-Type": "text/plain"}, body: "{}"}).then(r => "opaque " + r.type, e => "failed: " + e.name);`;
    const other = createServer((request, response) => {
        const body = request.url === "/attack.js" ? script : page;
        response.writeHead(200, { "Content-Type": request.url === "/attack.js" ? "text/javascript" : "text/html" });
        response.end(body);
    });
    other.listen(0, "127.0.0.1");
    await once(other, "listening");
    const otherUrl = `http://127.0.0.1:${other.address().port}/`;

    browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
    // The operator is signed in: the browser answers the web monitor's challenge.
    const context = await browser.newContext({ httpCredentials: { username: "alice", password: "secret" } });
    const tab = await context.newPage();
    const answers = [];
    tab.on("response", (response) => {
        if (response.url() === target)
            answers.push(`${response.request().method()} ${response.status()}`);
    });
    await tab.goto(otherUrl);
    assert.equal(await tab.evaluate(() => window.fetchResult), "failed: TypeError");
    assert.equal(await tab.evaluate(() => window.plainResult), "opaque opaque");
    const sent = tab.waitForResponse((response) => response.url() === target && response.request().method() === "POST"
        && response.request().postData() === "ids=4");
    await tab.evaluate(() => document.getElementById("form").submit());
    const form = await sent;
    assert.equal(form.status(), 415);

    // The preflight of the JSON fetch is refused, so its POST never goes out.
    assert.deepEqual(answers.sort(), ["OPTIONS 401", "POST 415", "POST 415"]);
    // Two readings later the batch is as it was.
    await new Promise((resolve) => setTimeout(resolve, 600));
    assert.equal(await batchStatus(webPort, 4), "pending");
    console.log("ok: the JSON fetch's preflight got 401 and its POST never left; the text/plain fetch and the form"
        + " got 415; batch 4 is still pending");
    other.close();
} catch (error) {
    console.error(`cross_site: ${error.stack ?? error}`);
    process.exitCode = 1;
} finally {
    clearTimeout(timer);
    await browser?.close();
    for (const child of children)
        child.kill("SIGTERM");
    rmSync(dir, { recursive: true, force: true });
}
