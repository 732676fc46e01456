// The web monitor's page: the shell (navigation, who is signed in, the
// language, the farm summary), one view at a time by the address, and the
// event stream that keeps every view current.
import { batchStatus, whoAmI } from "./api";
import { BatchHeaders, NodeHeaders, batchCells, nodeCells, nodeStatusWord, projectName } from "./celltext";
import { DetailsView } from "./detailsview";
import { element, setText } from "./dom";
import { chooseLanguage, languageTag, LanguageNames, Languages, loadCatalogue, tr, type Language } from "./i18n";
import { ListModel } from "./listmodel";
import { ListView } from "./listview";
import { closeMenu } from "./menu";
import { listAddress, parseRoute, type Route } from "./route";
import { FarmFeed } from "./farmfeed";
import type { ListUpdate } from "./feedmessages";
import { RowTable } from "./rowtable";
import { Summary } from "./summary";
import type { Batch, Farm, FarmNode, Status, WhoAmI } from "./types";

const BatchKeys = ["id", "project", "started", "status", "priority", "task", "times", "failures", "nodes"] as const;
const NodeKeys = ["id", "host", "status", "priority", "batch", "progress", "failures", "error"] as const;
const Keys = { batches: BatchKeys, nodes: NodeKeys };
const BatchWidths = ["4.5rem", "14rem", "12.5rem", "7rem", "6rem", "18rem", "11rem", "5.5rem", "5rem"];
const NodeWidths = ["4.5rem", "13rem", "7rem", "6rem", "5.5rem", "6rem", "5.5rem", "28rem"];
const LanguageKey = "korvane-web.language";

const batches = new RowTable<Batch>((row) => row.batch_id);
const nodes = new RowTable<FarmNode>((row) => row.node_id);
let today = new Date();

const batchModel = new ListModel<Batch>(batches, batchCells, (row) => nodeStatusWord(row.status),
    new Map<number, (row: Batch) => number>([
        [0, (row) => row.batch_id],
        [2, (row) => row.time_started ?? 0],
        [4, (row) => row.priority],
        [6, (row) => row.task?.time_elapsed ?? 0],
        [7, (row) => row.task?.nodes_failed ?? 0],
        [8, (row) => row.task?.nodes_active ?? 0],
    ]));
const nodeModel = new ListModel<FarmNode>(nodes, (row) => nodeCells(row, today), (row) => nodeStatusWord(row.status),
    new Map<number, (row: FarmNode) => number>([
        [0, (row) => row.node_id],
        [3, (row) => row.priority],
        [4, (row) => row.batch_id ?? -1],
        [5, (row) => row.progress ?? -1],
        [6, (row) => row.error_count ?? 0],
    ]));

const summary = new Summary();
let farm: Farm = { state: "connected", since: 0 };
let streamDownSince: number | null = null;
// Milliseconds between the program's readings, as its reading events say.
let interval = 1000;
let route: Route = parseRoute(location, Keys);
let who: WhoAmI = { user: null, role: "viewer" };

function navigate(path: string): void {
    history.pushState(null, "", path);
    show(parseRoute(location, Keys), true);
}

const batchView = new ListView<Batch>({
    target: "batches",
    get title() { return tr("Monitor/Batches"); },
    columns: BatchKeys.map((key, index) => ({ key, header: `Monitor/${BatchHeaders[index]}`, width: BatchWidths[index]! })),
    statuses: ["Pending", "Working", "Completed", "Paused", "Aborted"],
    model: batchModel,
    actions: ["pause", "resume", "abort", "priority"],
    get emptyText() { return tr("Web/No batches"); },
    get unmatchedText() { return tr("Web/No batch matches the filter"); },
    describe: (id) => `#${id} ${projectName(batches.rows.get(id)?.path ?? "")}`.trim(),
    open: (id) => navigate(`/batches/${id}`),
}, (query) => history.replaceState(null, "", listAddress("batches", query, BatchKeys)));

const nodeView = new ListView<FarmNode>({
    target: "nodes",
    get title() { return tr("Monitor/Nodes"); },
    columns: NodeKeys.map((key, index) => ({ key, header: `Monitor/${NodeHeaders[index]}`, width: NodeWidths[index]! })),
    statuses: ["Pending", "Working", "Completed", "Paused", "Aborted", "Ready"],
    model: nodeModel,
    actions: ["pause", "resume", "stop", "priority"],
    get emptyText() { return tr("Web/No nodes"); },
    get unmatchedText() { return tr("Web/No node matches the filter"); },
    describe: (id) => `#${id} ${nodes.rows.get(id)?.hostname ?? ""}`.trim(),
}, (query) => history.replaceState(null, "", listAddress("nodes", query, NodeKeys)));

const detailsView = new DetailsView(navigate);

// The shell.
const header = element("header", { class: "top" });
const brand = element("span", { class: "brand" }, "Korvane Monitor");
const nav = element("nav", {});
const navList = element("ul", {});
const batchesLink = element("a", { href: "/batches" });
const nodesLink = element("a", { href: "/nodes" });
navList.append(element("li", {}), element("li", {}));
navList.children[0]!.append(batchesLink);
navList.children[1]!.append(nodesLink);
nav.append(navList);
const userText = element("span", { class: "user" });
const languageLabel = element("label", { for: "language" });
const languageSelect = element("select", { id: "language" });
for (const language of Languages)
    languageSelect.append(element("option", { value: language, lang: languageTag(language) }, LanguageNames[language]));
header.append(brand, nav, userText, languageLabel, languageSelect);
const main = element("main", { id: "main", tabindex: "-1" });
document.body.replaceChildren(header, summary.banner, summary.root, main);

for (const [link, path] of [[batchesLink, "/batches"], [nodesLink, "/nodes"]] as const) {
    link.addEventListener("click", (event) => {
        if (event.ctrlKey || event.metaKey || event.shiftKey || event.button !== 0)
            return;
        event.preventDefault();
        navigate(path);
    });
}

function retranslate(): void {
    document.title = `${route.view === "nodes" ? tr("Monitor/Nodes") : route.view === "details"
        ? tr("Web/Batch #%1", route.id) : tr("Monitor/Batches")} — Korvane Monitor`;
    nav.setAttribute("aria-label", tr("Web/Views"));
    setText(batchesLink, tr("Monitor/Batches"));
    setText(nodesLink, tr("Monitor/Nodes"));
    setText(languageLabel, tr("Web/Language"));
    const role = tr(who.role === "operator" ? "Web/operator" : "Web/viewer");
    setText(userText, who.user === null ? tr("Web/No sign-in (%1)", role) : tr("Web/Signed in as %1 (%2)", who.user, role));
    summary.retranslate();
    batchView.retranslate();
    nodeView.retranslate();
    detailsView.render();
}

const feed = new FarmFeed("/assets/feed.js", (message) => {
    switch (message.kind) {
    case "update":
        applyRows(message.batches, message.nodes);
        if (message.counts)
            summary.counts(message.counts.batches, message.counts.nodes);
        if (message.reading) {
            interval = message.reading.interval;
            feed.setQuietLimit(quietLimit());
            summary.reading(message.reading.time);
        }
        break;
    case "farm":
        farm = message.farm;
        updateStaleness();
        break;
    case "batch":
        detailsView.update(message.status);
        break;
    case "link":
        streamDownSince = message.up ? null : message.lastEvent;
        updateStaleness();
        break;
    }
});

function updateStaleness(): void {
    let since: number | null = streamDownSince;
    if (farm.state === "disconnected")
        since = Math.min(since ?? Infinity, farm.since * 1000);
    summary.setStale(since);
    feed.setQuietLimit(quietLimit());
}

// How long the stream may be silent before it counts as broken: two
// readings and the server's time-out while the farm is read; beyond the
// server's 15 s heartbeat while it is not, or while the stream is coming back.
function quietLimit(): number {
    return farm.state === "disconnected" || streamDownSince !== null ? 20000 : 2 * interval + 6000;
}

function newDay(): void {
    const now = new Date();
    if (now.toDateString() !== today.toDateString()) {
        today = now;
        nodeModel.invalidate();
    }
}

function applyList<Row extends { status: Status }>(table: RowTable<Row>, model: ListModel<Row>,
    view: ListView<Row>, update: ListUpdate<Row> | null, drawn: boolean): void {
    if (!update)
        return;
    const change = "reset" in update ? table.reset(update.reset) : table.apply(update.changes);
    if (drawn)
        view.tableChanged(change);
    else
        model.update(change);
}

// Only the list in sight comes (the batches also for a batch's details);
// the other is sent whole when it is shown.
function applyRows(batchUpdate: ListUpdate<Batch> | null, nodeUpdate: ListUpdate<FarmNode> | null): void {
    newDay();
    applyList(batches, batchModel, batchView, batchUpdate, route.view === "batches");
    applyList(nodes, nodeModel, nodeView, nodeUpdate, route.view === "nodes");
    if (route.view === "details")
        detailsView.setMissing(!batches.rows.has(route.id));
}

function markCurrent(link: HTMLAnchorElement, current: boolean): void {
    if (current)
        link.setAttribute("aria-current", "page");
    else
        link.removeAttribute("aria-current");
}

function show(next: Route, moveFocus: boolean): void {
    closeMenu();
    route = next;
    markCurrent(batchesLink, next.view !== "nodes");
    markCurrent(nodesLink, next.view === "nodes");
    if (next.view === "details") {
        detailsView.show(next.id);
        detailsView.setMissing(batches.rows.size > 0 && !batches.rows.has(next.id));
        main.replaceChildren(detailsView.root);
        feed.show("batches", next.id);
        // The first status comes now; the stream brings the changes.
        void batchStatus(next.id).then((status) => detailsView.update(status), () => undefined);
        if (moveFocus)
            detailsView.focusHeading();
    } else {
        const view = next.view === "batches" ? batchView : nodeView;
        main.replaceChildren(view.root);
        view.applyQuery(next.query);
        feed.show(next.view, null);
        if (moveFocus)
            view.focusGrid();
    }
    retranslate();
}

async function setLanguage(language: Language): Promise<void> {
    try {
        await loadCatalogue(language);
    } catch {
        // the texts stay in English
    }
    document.documentElement.lang = languageTag(language);
    languageSelect.value = language;
    retranslate();
}

languageSelect.addEventListener("change", () => {
    const language = languageSelect.value as Language;
    try {
        localStorage.setItem(LanguageKey, language);
    } catch {
        // private windows may refuse; the choice then lasts for this page
    }
    void setLanguage(language);
});

window.addEventListener("popstate", () => show(parseRoute(location, Keys), false));

async function start(): Promise<void> {
    let stored: string | null = null;
    try {
        stored = localStorage.getItem(LanguageKey);
    } catch {
        stored = null;
    }
    await setLanguage(chooseLanguage(navigator.languages, stored));
    try {
        who = await whoAmI();
    } catch {
        who = { user: null, role: "viewer" };
    }
    batchView.setRole(who.role);
    nodeView.setRole(who.role);
    if (location.pathname === "/")
        history.replaceState(null, "", "/batches" + location.search);
    show(parseRoute(location, Keys), false);
}

void start();
