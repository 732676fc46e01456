// The web monitor's page in Debian's headless Chromium, measured from its
// own traces: the load to the first full list, each update's main-thread
// time, long tasks while scrolling the whole list, the JS heap over time,
// and one delta that changes every batch. run.sh starts the programs and
// runs each mode for the real page and the naive one.
//   node bench.mjs live URL OUT.json [--label L] [--updates N] [--heap-minutes M]
//   node bench.mjs burst ASSETS_DIR OUT.json [--label L]
//   node bench.mjs table REAL.json NAIVE.json...
import { createRequire } from "node:module";
import { createServer } from "node:http";
import { readFileSync, writeFileSync } from "node:fs";
import { dirname, extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";
import { once } from "node:events";

const here = dirname(fileURLToPath(import.meta.url));
const require = createRequire(join(here, "../../web/ui/package.json"));
const { chromium } = require("playwright-core");

const RowSelector = '[role=grid] [role=row][aria-rowindex="2"]';
const TraceCategories = ["devtools.timeline", "disabled-by-default-devtools.timeline", "toplevel", "v8.execute",
    "blink.user_timing"];
const LongTask = 50;
// Names of the main thread's work that style, lay out and paint the page.
const RenderingEvents = new Set(["UpdateLayoutTree", "Layout", "PrePaint", "Paint", "Layerize", "Commit"]);

function options(args) {
    const named = {};
    const plain = [];
    for (let i = 0; i < args.length; ++i) {
        if (args[i].startsWith("--"))
            named[args[i].slice(2)] = args[++i];
        else
            plain.push(args[i]);
    }
    return { named, plain };
}

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

function percentile(values, p) {
    if (values.length === 0)
        return NaN;
    const sorted = [...values].sort((a, b) => a - b);
    return sorted[Math.min(sorted.length - 1, Math.ceil((p / 100) * sorted.length) - 1)];
}

async function launch() {
    return chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
}

// --- Traces -----------------------------------------------------------------

async function traced(browser, page, work) {
    await browser.startTracing(page, { categories: TraceCategories });
    let result;
    let buffer;
    try {
        result = await work();
    } finally {
        buffer = await browser.stopTracing();
    }
    const trace = JSON.parse(buffer.toString());
    return { result, events: trace.traceEvents ?? trace };
}

// The page's main thread: the renderer's main thread that worked the most.
function mainThread(events) {
    const names = new Map();
    for (const event of events) {
        if (event.name === "thread_name")
            names.set(`${event.pid}:${event.tid}`, event.args.name);
    }
    const busy = new Map();
    for (const event of events) {
        const key = `${event.pid}:${event.tid}`;
        if (event.name === "RunTask" && event.ph === "X" && names.get(key) === "CrRendererMain")
            busy.set(key, (busy.get(key) ?? 0) + event.dur);
    }
    let best = null;
    for (const [key, total] of busy) {
        if (!best || total > busy.get(best))
            best = key;
    }
    return best;
}

// The page's own worker (the one that reads the stream), if it has one.
function workerThread(events, main) {
    const pid = main.split(":")[0];
    const event = events.find((e) => e.name === "thread_name" && String(e.pid) === pid
        && e.args.name === "DedicatedWorker thread");
    return event ? `${event.pid}:${event.tid}` : null;
}

// The main thread's top-level tasks, in milliseconds on the trace's clock.
function mainTasks(events, thread) {
    const tasks = events
        .filter((event) => event.name === "RunTask" && event.ph === "X" && `${event.pid}:${event.tid}` === thread)
        .map((event) => ({ start: event.ts / 1000, end: (event.ts + event.dur) / 1000, dur: event.dur / 1000 }))
        .sort((a, b) => a.start - b.start);
    const top = [];
    for (const task of tasks) {
        const last = top[top.length - 1];
        if (last && task.start < last.end)
            continue;
        top.push(task);
    }
    return top;
}

function unionLength(intervals) {
    intervals.sort((a, b) => a.start - b.start);
    let total = 0;
    let end = -Infinity;
    for (const { start, end: stop } of intervals) {
        if (stop <= end)
            continue;
        total += stop - Math.max(start, end);
        end = stop;
    }
    return total;
}

// Data of the event stream arriving in the page's process (on the main
// thread, or on a worker that reads the stream), grouped: one group for each
// burst of the server's writes (a delta and the reading after it). Groups
// smaller than minBytes (a reading, a heartbeat) join the one before.
function arrivals(events, thread, minBytes) {
    const pid = thread.split(":")[0];
    const received = events.filter((event) => event.name === "ResourceReceivedData" && String(event.pid) === pid);
    const perRequest = new Map();
    for (const event of received) {
        const id = event.args.data.requestId;
        perRequest.set(id, (perRequest.get(id) ?? 0) + 1);
    }
    const stream = [...perRequest].sort((a, b) => b[1] - a[1])[0]?.[0];
    const groups = [];
    let previous = -Infinity;
    for (const event of received.filter((e) => e.args.data.requestId === stream).sort((a, b) => a.ts - b.ts)) {
        const at = event.ts / 1000;
        const bytes = event.args.data.encodedDataLength ?? 0;
        const last = groups[groups.length - 1];
        if (last && at - previous < 250)
            last.bytes += bytes;
        else
            groups.push({ at, bytes });
        previous = at;
    }
    const kept = [];
    for (const group of groups) {
        if (group.bytes < minBytes && kept.length > 0)
            continue;
        kept.push(group);
    }
    return kept.filter((group) => group.bytes >= minBytes);
}

// Each update's main-thread time: every top-level task from the one that
// took in the update's first bytes up to the next update's, so the parse,
// the DOM writes, the frame that draws them and any garbage collection
// they cause all count.
function updateCosts(events, until) {
    const thread = mainThread(events);
    const tasks = mainTasks(events, thread);
    const worker = workerThread(events, thread);
    const workerTasks = worker ? mainTasks(events, worker) : [];
    const groups = arrivals(events, thread, 1024);
    const rendering = events.filter((event) => RenderingEvents.has(event.name) && event.ph === "X"
        && `${event.pid}:${event.tid}` === thread)
        .map((event) => ({ start: event.ts / 1000, end: (event.ts + event.dur) / 1000 }));
    const starts = groups.map((group) => {
        const holder = tasks.find((task) => task.start <= group.at && group.at <= task.end);
        return holder ? holder.start : group.at;
    });
    const traceEnd = until ?? Math.max(...tasks.map((task) => task.end));
    const updates = [];
    for (let i = 0; i < starts.length; ++i) {
        const from = starts[i];
        const to = i + 1 < starts.length ? starts[i + 1] : traceEnd;
        const inside = tasks.filter((task) => task.start >= from && task.start < to);
        const total = inside.reduce((sum, task) => sum + task.dur, 0);
        const last = inside[inside.length - 1];
        updates.push({
            bytes: groups[i].bytes,
            total,
            worker: workerTasks.filter((task) => task.end >= groups[i].at && task.start < to)
                .reduce((sum, task) => sum + task.dur, 0),
            longest: Math.max(0, ...inside.map((task) => task.dur)),
            rendering: unionLength(rendering.filter((event) => event.start >= from && event.start < to)),
            // Still working when the next update came, or busy all along:
            // the page fell behind and the updates' data queued up.
            capped: last ? last.end > to || total > 0.9 * (to - from) : false,
            window: to - from,
        });
    }
    return updates;
}

function longTasks(events) {
    const tasks = mainTasks(events, mainThread(events));
    const long = tasks.filter((task) => task.dur > LongTask);
    return { count: long.length, longest: Math.max(0, ...tasks.map((task) => task.dur)) };
}

// --- The page ---------------------------------------------------------------

// Navigation start to the frame that shows the snapshot's rows and counts,
// on the page's own clock (performance.now() counts from the navigation).
async function loadList(page, url, capMs) {
    await page.goto(url, { waitUntil: "commit" });
    const handle = await page.waitForFunction((selector) => {
        const row = document.querySelector(selector);
        const counts = document.querySelector(".summary-counts");
        if (!row || !counts || !counts.textContent)
            return false;
        const grid = document.querySelector("[role=grid]");
        return { ms: performance.now(), rows: Number(grid.getAttribute("aria-rowcount")) - 1 };
    }, RowSelector, { polling: "raf", timeout: capMs });
    return handle.jsonValue();
}

// The page's workers, each as a function that sends it a DevTools command:
// their heaps count with the page's.
async function workers(cdp) {
    const found = [];
    const pending = new Map();
    let next = 0;
    cdp.on("Target.attachedToTarget", ({ sessionId, targetInfo }) => {
        if (targetInfo.type !== "worker")
            return;
        found.push((method, params = {}) => new Promise((resolve, reject) => {
            const id = ++next;
            pending.set(id, { resolve, reject });
            cdp.send("Target.sendMessageToTarget", { sessionId, message: JSON.stringify({ id, method, params }) })
                .catch(reject);
        }));
    });
    cdp.on("Target.receivedMessageFromTarget", ({ message }) => {
        const reply = JSON.parse(message);
        const waiting = pending.get(reply.id);
        if (!waiting)
            return;
        pending.delete(reply.id);
        if (reply.error)
            waiting.reject(new Error(reply.error.message));
        else
            waiting.resolve(reply.result);
    });
    await cdp.send("Target.setAutoAttach", { autoAttach: true, waitForDebuggerOnStart: false, flatten: false });
    await sleep(500);
    return found;
}

async function heapSample(cdp, pageWorkers, origin) {
    await cdp.send("HeapProfiler.collectGarbage");
    const { usedSize } = await cdp.send("Runtime.getHeapUsage");
    let worker = 0;
    for (const send of pageWorkers) {
        await send("HeapProfiler.collectGarbage");
        worker += (await send("Runtime.getHeapUsage")).usedSize;
    }
    const { nodes } = await cdp.send("Memory.getDOMCounters");
    return { at: (Date.now() - origin) / 1000, used: usedSize + worker, page: usedSize, worker, nodes };
}

// Scrolls the list's frame from top to bottom, one step per animation frame.
async function scrollThrough(page, step, capMs) {
    return page.evaluate(({ step, capMs }) => new Promise((resolve) => {
        const frame = document.querySelector(".grid-frame");
        frame.scrollTop = 0;
        const start = performance.now();
        let frames = 0;
        const next = () => {
            const bottom = frame.scrollTop + frame.clientHeight >= frame.scrollHeight - 1;
            if (bottom || performance.now() - start > capMs) {
                resolve({ frames, ms: performance.now() - start, bottom, height: frame.scrollHeight });
                return;
            }
            frames += 1;
            frame.scrollTop += step;
            requestAnimationFrame(next);
        };
        requestAnimationFrame(next);
    }), { step, capMs });
}

async function live(url, out, named) {
    const label = named.label ?? "page";
    const wantedUpdates = Number(named.updates ?? 60);
    const heapMinutes = Number(named["heap-minutes"] ?? 2);
    const result = { label, mode: "live", url, loads: [], heap: [] };
    const browser = await launch();
    try {
        // Three loads, each in a fresh context: nothing cached.
        for (let i = 0; i < 3; ++i) {
            const context = await browser.newContext();
            const page = await context.newPage();
            try {
                result.loads.push(await loadList(page, url, 30000));
            } catch {
                result.loads.push({ ms: 30000, capped: true });
            }
            if (i < 2)
                await context.close();
            else
                result.page = page;
        }
        const page = result.page;
        delete result.page;
        const origin = Date.now();
        const cdp = await page.context().newCDPSession(page);
        const pageWorkers = await workers(cdp);
        await sleep(2000);
        result.heap.push(await heapSample(cdp, pageWorkers, origin));

        // Updates as they come, nothing else happening.
        const { events } = await traced(browser, page, () => sleep((wantedUpdates + 1.5) * 1000));
        const updates = updateCosts(events).slice(0, wantedUpdates);
        result.updates = updates;
        result.heap.push(await heapSample(cdp, pageWorkers, origin));

        // The whole list scrolled while the updates keep coming.
        const scroll = await traced(browser, page, () => scrollThrough(page, 320, 60000));
        result.scroll = { ...scroll.result, ...longTasks(scroll.events) };
        result.heap.push(await heapSample(cdp, pageWorkers, origin));

        for (let mark = 30; mark <= heapMinutes * 60; mark += 30) {
            const wait = origin + mark * 1000 - Date.now();
            if (wait < 0)
                continue;
            await sleep(wait);
            result.heap.push(await heapSample(cdp, pageWorkers, origin));
        }
    } finally {
        await browser.close();
    }
    writeFileSync(out, JSON.stringify(result, null, 1));
}

// --- The synthetic farm -----------------------------------------------------

const TaskNames = ["AddPhotos", "MatchPhotos", "OptimizeCameras", "BuildDenseCloud", "BuildModel", "BuildUV",
    "BuildTiledModel", "BuildOrthomosaic", "ExportReport", "ExportDem", "SaveProject", "DetectMarkers"];
const Places = ["castle", "forest", "campus", "quarry", "harbour", "bridge", "valley", "tower"];
const Statuses = ["pending", "pending", "pending", "pending", "pending", "pending", "pending", "completed",
    "completed", "completed", "paused", "aborted", "inprogress"];

// A fixed sequence, so every run serves the same farm.
function chance(seed) {
    let state = seed >>> 0;
    return () => {
        state = (state * 1664525 + 1013904223) >>> 0;
        return state / 4294967296;
    };
}

function syntheticFarm(batchCount, nodeCount) {
    const random = chance(1);
    const pick = (list) => list[Math.floor(random() * list.length)];
    const now = Math.floor(Date.now() / 1000);
    const batches = [];
    for (let id = 1; id <= batchCount; ++id) {
        const status = pick(Statuses);
        const total = 10 + Math.floor(random() * 50);
        const done = status === "completed" ? total : Math.floor(random() * total);
        const place = pick(Places);
        batches.push({
            batch_id: id,
            path: `/srv/projects/${place}-${Math.floor(random() * 1000)}/${place}.kproj`,
            status,
            priority: Math.floor(random() * 5) - 2,
            time_started: now - Math.floor(random() * 86400),
            task: {
                name: pick(TaskNames),
                params: { quality: Math.floor(random() * 3), keypoint_limit: 10000 * (1 + Math.floor(random() * 6)),
                    path: `/srv/exports/out_${Math.floor(random() * 10000)}` },
                status,
                time_elapsed: Math.round(random() * 36000) / 10,
                time_left: status === "inprogress" ? Math.round(random() * 36000) / 10 : 0,
                progress: (100 * done) / total,
                items_total: total,
                items_done: done,
                nodes_active: status === "inprogress" ? Math.floor(random() * 40) : 0,
                nodes_waiting: status === "inprogress" ? Math.floor(random() * 5) : 0,
                nodes_failed: Math.floor(random() * 3),
            },
        });
    }
    const nodes = [];
    for (let id = 1; id <= nodeCount; ++id) {
        const working = random() < 0.95;
        nodes.push({
            node_id: id,
            hostname: `render-${String(id).padStart(4, "0")}:5841`,
            version: "1.5.0",
            status: working ? "inprogress" : "paused",
            priority: 0,
            batch_id: working ? 1 + Math.floor(random() * batchCount) : null,
            progress: working ? random() * 100 : null,
            task: working ? { name: pick(TaskNames), params: { quality: 1 } } : null,
            error_count: Math.floor(random() * 2),
            last_error: random() < 0.25 ? { time: now - 600, batch_id: 3, message: "worker process crashed" } : null,
        });
    }
    return { batches, nodes };
}

// Every batch's task a step further: the progress and the time elapsed.
function everyBatchChanged(batches, step) {
    return batches.map((batch) => {
        const task = batch.task;
        task.time_elapsed = Math.round((task.time_elapsed + step) * 10) / 10;
        task.progress = Math.min(100, task.progress + 0.1 * step);
        return { batch_id: batch.batch_id, task: { ...task } };
    });
}

const ContentTypes = { ".html": "text/html; charset=utf-8", ".js": "text/javascript; charset=utf-8",
    ".css": "text/css; charset=utf-8", ".json": "application/json" };

// The page's files and the API's whoami and events, the events from the
// synthetic farm: a snapshot on connecting, a reading every second, and a
// delta whenever the benchmark asks for one.
async function farmServer(assets) {
    const farm = syntheticFarm(10000, 2000);
    const streams = new Set();
    let seq = 1;
    const frame = (type, data) => `event: ${type}\nid: ${seq}\ndata: ${JSON.stringify(data)}\n\n`;
    const server = createServer((request, response) => {
        const path = new URL(request.url, "http://localhost").pathname;
        if (path === "/api/v1/whoami") {
            response.writeHead(200, { "Content-Type": "application/json" });
            response.end(JSON.stringify({ user: null, role: "viewer" }));
            return;
        }
        if (path === "/api/v1/events") {
            response.writeHead(200, { "Content-Type": "text/event-stream", "Cache-Control": "no-store" });
            response.write(frame("snapshot", { seq, farm: { state: "connected", since: Math.floor(Date.now() / 1000) },
                batches: farm.batches, nodes: farm.nodes }));
            streams.add(response);
            request.on("close", () => streams.delete(response));
            return;
        }
        const name = path === "/" || path === "/batches" || path === "/nodes" ? "index.html" : path.slice(1);
        const file = normalize(join(assets, name));
        let body;
        try {
            if (!file.startsWith(normalize(assets)))
                throw new Error("outside");
            body = readFileSync(file);
        } catch {
            response.writeHead(404);
            response.end();
            return;
        }
        response.writeHead(200, { "Content-Type": ContentTypes[extname(file)] ?? "application/octet-stream" });
        response.end(body);
    });
    server.listen(0, "127.0.0.1");
    await once(server, "listening");
    const send = (text) => {
        for (const stream of streams)
            stream.write(text);
    };
    const reading = setInterval(() => send(frame("reading", { time: Date.now(), interval: 1000 })), 1000);
    return {
        port: server.address().port,
        streams: () => streams.size,
        delta(step) {
            seq += 1;
            send(frame("delta", { seq, batches: { added: [], removed: [], changed: everyBatchChanged(farm.batches, step) },
                nodes: { added: [], removed: [], changed: [] } }));
        },
        close() {
            clearInterval(reading);
            for (const stream of streams)
                stream.destroy();
            server.closeAllConnections?.();
            server.close();
        },
    };
}

async function burst(assets, out, named) {
    const label = named.label ?? "page";
    const deltas = Number(named.deltas ?? 5);
    const spacing = Number(named.spacing ?? 3000);
    const server = await farmServer(assets);
    const browser = await launch();
    const result = { label, mode: "burst", spacing };
    try {
        const page = await browser.newPage();
        result.load = await loadList(page, `http://127.0.0.1:${server.port}/batches`, 30000);
        await sleep(1500);
        const { events } = await traced(browser, page, async () => {
            for (let i = 1; i <= deltas; ++i) {
                server.delta(i);
                await sleep(spacing);
            }
        });
        result.updates = updateCosts(events).filter((update) => update.bytes > 1000000);
        result.cell = await page.evaluate(() => document.querySelector(
            '[role=grid] [role=row][aria-rowindex="2"]')?.textContent ?? "");
    } finally {
        await browser.close();
        server.close();
    }
    writeFileSync(out, JSON.stringify(result, null, 1));
}

// --- The table --------------------------------------------------------------

const ms = (value) => (Number.isFinite(value) ? `${value.toFixed(1)} ms` : "–");
const mb = (bytes) => `${(bytes / 1048576).toFixed(1)} MB`;

// A figure of several updates; those that ran into the next one are at least what they show.
function capped(updates, pick) {
    const values = updates.map((update) => update.total);
    const value = pick(values);
    const any = updates.some((update) => update.capped && update.total >= value);
    return any ? `> ${ms(value)}` : ms(value);
}

function table(files) {
    const runs = files.map((file) => JSON.parse(readFileSync(file, "utf8")));
    const labels = [...new Set(runs.map((run) => run.label))];
    const find = (label, mode) => runs.find((run) => run.label === label && run.mode === mode);
    const rows = [];
    const row = (figure, target, cell) => rows.push([figure, ...labels.map((label) => cell(find(label, "live"),
        find(label, "burst"))), target]);
    row("load to the first full list, median (of 3; max)", "≤ 1 s", (run) => {
        if (!run)
            return "–";
        const values = run.loads.map((load) => load.ms);
        const capped = run.loads.some((load) => load.capped) ? "> " : "";
        return `${capped}${ms(percentile(values, 50))} (${ms(Math.max(...values))}), ${run.loads[0].rows ?? "?"} rows`;
    });
    row("an update's main-thread time, p50 / p95 / max", "p95 ≤ 8 ms", (run) => !run?.updates ? "–"
        : `${capped(run.updates, (v) => percentile(v, 50))} / ${capped(run.updates, (v) => percentile(v, 95))}`
            + ` / ${capped(run.updates, (v) => Math.max(...v))} (${run.updates.length} updates)`);
    row("of which style, layout and paint, p50", "", (run) => !run?.updates ? "–"
        : ms(percentile(run.updates.map((update) => update.rendering), 50)));
    row("the stream worker's time an update, p50 / p95", "", (run) => !run?.updates ? "–"
        : run.updates.every((update) => !update.worker) ? "no worker"
            : `${ms(percentile(run.updates.map((update) => update.worker), 50))}`
                + ` / ${ms(percentile(run.updates.map((update) => update.worker), 95))}`);
    row("an update's longest task, p95", "", (run) => !run?.updates ? "–"
        : ms(percentile(run.updates.map((update) => update.longest), 95)));
    row("an update's bytes, median", "", (run) => !run?.updates ? "–"
        : `${Math.round(percentile(run.updates.map((update) => update.bytes), 50)).toLocaleString("en")}`);
    row("scrolling the whole list: tasks > 50 ms, longest task", "none", (run) => !run?.scroll ? "–"
        : `${run.scroll.count}, ${ms(run.scroll.longest)}`);
    row("scrolling: frames, time", "", (run) => !run?.scroll ? "–"
        : `${run.scroll.frames} in ${(run.scroll.ms / 1000).toFixed(1)} s${run.scroll.bottom ? "" : " (stopped, not at the end)"}`);
    row("JS heap after GC: start / end / max", "flat", (run) => {
        if (!run?.heap?.length)
            return "–";
        const used = run.heap.map((sample) => sample.used);
        return `${mb(used[0])} / ${mb(used[used.length - 1])} / ${mb(Math.max(...used))}`
            + ` (${run.heap.length} samples over ${run.heap[run.heap.length - 1].at.toFixed(0)} s)`;
    });
    row("of which the stream worker's: start / end", "", (run) => !run?.heap?.length ? "–"
        : !run.heap[0].worker ? "no worker" : `${mb(run.heap[0].worker)} / ${mb(run.heap[run.heap.length - 1].worker)}`);
    row("DOM nodes: start / end", "", (run) => !run?.heap?.length ? "–"
        : `${run.heap[0].nodes} / ${run.heap[run.heap.length - 1].nodes}`);
    row("10,000 batches changed in one delta, median (of N; max)", "", (_, run) => !run?.updates?.length ? "–"
        : `${capped(run.updates, (v) => percentile(v, 50))} (${run.updates.length}; `
            + `${capped(run.updates, (v) => Math.max(...v))})`);
    row("of which the stream worker's, median", "", (_, run) => !run?.updates?.length ? "–"
        : run.updates.every((update) => !update.worker) ? "no worker"
            : ms(percentile(run.updates.map((update) => update.worker), 50)));
    row("of which style, layout and paint, median", "", (_, run) => !run?.updates?.length ? "–"
        : ms(percentile(run.updates.map((update) => update.rendering), 50)));
    const header = ["figure", ...labels, "target"];
    const widths = header.map((_, column) => Math.max(...[header, ...rows].map((cells) => cells[column].length)));
    const line = (cells) => `| ${cells.map((cell, column) => cell.padEnd(widths[column])).join(" | ")} |`;
    console.log(line(header));
    console.log(line(widths.map((width) => "-".repeat(width))));
    for (const cells of rows)
        console.log(line(cells));
}

// --- Main -------------------------------------------------------------------

const [mode, ...rest] = process.argv.slice(2);
const { named, plain } = options(rest);
// Whatever happens, the browser is closed and the process ends.
const deadline = setTimeout(() => {
    console.error(`bench.mjs ${mode}: timed out`);
    process.exit(1);
}, Number(named["deadline-seconds"] ?? 1500) * 1000);
try {
    if (mode === "live")
        await live(plain[0], plain[1], named);
    else if (mode === "burst")
        await burst(plain[0], plain[1], named);
    else if (mode === "table")
        table(plain);
    else
        throw new Error("usage: bench.mjs live URL OUT | burst ASSETS OUT | table FILE...");
} catch (error) {
    console.error(`bench.mjs ${mode}: ${error.stack ?? error}`);
    process.exitCode = 1;
} finally {
    clearTimeout(deadline);
}
