// What the page tests share: korvane-sim and korvane-web as real processes
// on loopback, a counting relay between them, Debian's Chromium driven by
// Playwright, and clean-up of all of it, also on failure.
//   node TEST.mjs SOURCE_DIR WEB_PROGRAM SIM_PROGRAM
import { execFileSync, spawn } from "node:child_process";
import { createServer, connect } from "node:net";
import { createRequire } from "node:module";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { once } from "node:events";

export const [sourceDir, webProgram, simProgram] = process.argv.slice(2);
const require = createRequire(join(sourceDir, "web/ui/package.json"));
export const { chromium } = require("playwright-core");
export const axeSource = readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");

// "secret", bcrypt, cost 4.
export const secretHash = "$2b$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";

const children = new Set();
const servers = [];
const browsers = [];
export const dir = mkdtempSync(join(tmpdir(), "korvane-page-"));

export const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Starts a program and waits for its "listening on ADDR:PORT" line.
export async function start(program, args) {
    const child = spawn(program, args, { stdio: ["ignore", "pipe", "pipe"] });
    children.add(child);
    child.on("exit", () => children.delete(child));
    child.stderr.setEncoding("utf8");
    child.stderr.on("data", (text) => {
        if (process.env.KORVANE_TEST_VERBOSE)
            process.stderr.write(text);
    });
    let output = "";
    child.stdout.setEncoding("utf8");
    for await (const chunk of child.stdout) {
        output += chunk;
        const match = output.match(/listening on [^\n]*:(\d+)\n/);
        if (match) {
            child.stdout.resume();
            return { child, port: Number(match[1]) };
        }
    }
    throw new Error(`${program} did not start`);
}

export async function stop(child) {
    if (child.exitCode !== null || child.signalCode !== null)
        return;
    child.kill("SIGTERM");
    await once(child, "exit");
}

export function startSim(args = [], port = 0) {
    return start(simProgram, ["--listen", `127.0.0.1:${port}`, "--seed", "1", ...args]);
}

export function startWeb(serverPort, args = []) {
    return start(webProgram, ["--server", `127.0.0.1:${serverPort}`, "--web.listen-address", "127.0.0.1:0",
        "--interval", "0.5", "--server-timeout", "2", ...args]);
}

// A TCP relay to a port that counts the JSON requests naming each method
// (the simulator's protocol) and can cut every connection through it.
export async function countingRelay(targetPort) {
    const counts = new Map();
    const sockets = new Set();
    const server = createServer((client) => {
        const upstream = connect(targetPort, "127.0.0.1");
        sockets.add(client);
        sockets.add(upstream);
        client.on("close", () => sockets.delete(client));
        upstream.on("close", () => sockets.delete(upstream));
        let pending = "";
        client.on("data", (data) => {
            pending += data.toString("utf8");
            let end;
            while ((end = pending.indexOf("\n")) >= 0) {
                const method = /"method"\s*:\s*"([^"]+)"/.exec(pending.slice(0, end))?.[1];
                if (method)
                    counts.set(method, (counts.get(method) ?? 0) + 1);
                pending = pending.slice(end + 1);
            }
            upstream.write(data);
        });
        upstream.pipe(client);
        client.on("error", () => upstream.destroy());
        upstream.on("error", () => client.destroy());
        client.on("close", () => upstream.destroy());
        upstream.on("close", () => client.destroy());
    });
    server.listen(0, "127.0.0.1");
    await once(server, "listening");
    servers.push(server);
    return {
        port: server.address().port,
        count: (method) => counts.get(method) ?? 0,
        // Ends every connection through the relay, as a broken link would.
        cut: () => sockets.forEach((socket) => socket.destroy()),
    };
}

export function writeFile(name, text) {
    const path = join(dir, name);
    writeFileSync(path, text);
    return path;
}

export async function launch() {
    const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
    browsers.push(browser);
    return browser;
}

// A page of a new context; the page's own errors fail the test.
export async function openPage(browser, options = {}) {
    const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: "en-US", ...options });
    const page = await context.newPage();
    page.on("pageerror", (error) => {
        throw new Error(`the page failed: ${error.message}`);
    });
    return page;
}

// Waits until check() gives a truthy value, at most ms; returns it, or throws with what.
export async function until(what, check, ms = 5000) {
    const end = Date.now() + ms;
    let last;
    while (Date.now() < end) {
        last = await check();
        if (last)
            return last;
        await sleep(50);
    }
    throw new Error(`${what}: not within ${ms} ms (last: ${JSON.stringify(last)})`);
}

// korvane-ctl of this build against the simulator: its output, or its JSON with json.
export function ctl(simPort, args, { json = false } = {}) {
    const output = execFileSync(join(dirname(webProgram), "korvane-ctl"),
        ["--host", `127.0.0.1:${simPort}`, ...(json ? ["--json"] : []), ...args], { encoding: "utf8" });
    return json ? JSON.parse(output) : output;
}

// The second cell (the project or the host) of the grid's row for an id, to click.
export function cellOf(page, id) {
    return page.locator(`[role=row]:has([role=gridcell]:text-is("${id}")) [role=gridcell]`).nth(1);
}

// The texts of the grid's row for an id, by column header.
export async function rowTexts(page, id) {
    return page.evaluate((rowId) => {
        const grid = document.querySelector("[role=grid]");
        if (!grid)
            return null;
        const headers = [...grid.querySelectorAll("[role=columnheader]")].map((cell) => cell.textContent);
        for (const row of grid.querySelectorAll("[role=rowgroup]:last-child [role=row]")) {
            const cells = [...row.querySelectorAll("[role=gridcell]")].map((cell) => cell.textContent);
            if (cells[0] === String(rowId))
                return Object.fromEntries(headers.map((header, i) => [header.replace(/ [▲▼]$/, ""), cells[i]]));
        }
        return null;
    }, id);
}

export async function snapshot(webPort, auth) {
    const headers = auth ? { Authorization: "Basic " + Buffer.from(auth).toString("base64") } : {};
    const response = await fetch(`http://127.0.0.1:${webPort}/api/v1/snapshot`, { headers });
    return response.json();
}

// The state once the program has read the simulator's 30 batches.
export function firstReading(webPort, auth) {
    return until("the first reading", async () => {
        const state = await snapshot(webPort, auth);
        return state.batches.length === 30 ? state : null;
    });
}

// The monitor's word for a status of the API.
export function statusWord(status) {
    return { pending: "Pending", inprogress: "Working", completed: "Completed", paused: "Paused", aborted: "Aborted",
        ready: "Ready" }[status];
}

// Runs the test body with a time limit and cleans up whatever happens.
export async function run(name, limitMs, body) {
    const timer = setTimeout(() => {
        console.error(`${name}: timed out after ${limitMs} ms`);
        cleanUp().finally(() => process.exit(1));
    }, limitMs);
    try {
        await body();
        console.log(`${name}: ok`);
    } catch (error) {
        console.error(`${name}: ${error.stack ?? error}`);
        process.exitCode = 1;
    } finally {
        clearTimeout(timer);
        await cleanUp();
    }
}

async function cleanUp() {
    for (const browser of browsers.splice(0))
        await browser.close().catch(() => undefined);
    for (const server of servers.splice(0))
        server.close();
    for (const child of [...children])
        child.kill("SIGKILL");
    rmSync(dir, { recursive: true, force: true });
}
