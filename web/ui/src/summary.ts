// Across the top: the farm's counts by status, how old the data is, and,
// when the page cannot trust it, the banner that says so. Connection
// changes are announced once through a live region, never every second.
import { batchStatusWord, clockText, nodeStatusWord } from "./celltext";
import { element, setHidden, setText } from "./dom";
import { tr } from "./i18n";
import type { Status } from "./types";

const Order: Status[] = ["inprogress", "pending", "paused", "completed", "aborted", "ready"];

function countsText(counts: ReadonlyMap<Status, number>, word: (status: Status) => string): string {
    return Order.filter((status) => counts.has(status) && word(status))
        .map((status) => `${word(status)} ${counts.get(status)}`)
        .join(" · ");
}

export class Summary {
    readonly root: HTMLElement;
    readonly banner: HTMLElement;
    private readonly batchesLabel: HTMLElement;
    private readonly batches: HTMLElement;
    private readonly nodesLabel: HTMLElement;
    private readonly nodes: HTMLElement;
    private readonly asOf: HTMLElement;
    private readonly live: HTMLElement;
    private staleSince: number | null = null;
    private readingTime: number | null = null;
    private announced = true;

    constructor() {
        this.root = element("section", { class: "summary", "aria-labelledby": "summary-label" });
        const label = element("h2", { id: "summary-label", class: "visually-hidden" });
        this.batchesLabel = element("span", { class: "summary-label" });
        this.batches = element("span", { class: "summary-counts" });
        this.nodesLabel = element("span", { class: "summary-label" });
        this.nodes = element("span", { class: "summary-counts" });
        this.asOf = element("span", { class: "as-of" });
        this.root.append(label, this.batchesLabel, this.batches, this.nodesLabel, this.nodes, this.asOf);
        this.banner = element("div", { class: "stale-banner", hidden: "" });
        this.live = element("div", { class: "visually-hidden", "aria-live": "polite" });
        this.root.append(this.live);
        this.retranslate();
    }

    retranslate(): void {
        setText(this.root.querySelector("#summary-label")!, tr("Web/Farm summary"));
        setText(this.batchesLabel, tr("Monitor/Batches"));
        setText(this.nodesLabel, tr("Monitor/Nodes"));
        this.renderTime();
        this.renderBanner();
    }

    counts(batches: ReadonlyMap<Status, number>, nodes: ReadonlyMap<Status, number>): void {
        setText(this.batches, countsText(batches, batchStatusWord));
        setText(this.nodes, countsText(nodes, nodeStatusWord));
    }

    // A good reading of the farm, in milliseconds since the epoch.
    reading(time: number): void {
        if (this.staleSince !== null)
            return;
        this.readingTime = time;
        this.renderTime();
    }

    // The data stopped being current at since (milliseconds), or is current again.
    setStale(since: number | null): void {
        if (since === this.staleSince)
            return;
        this.staleSince = since;
        this.renderBanner();
        const healthy = since === null;
        if (this.announced !== healthy)
            setText(this.live, healthy ? tr("Web/Connected to the server again") : this.bannerText());
        this.announced = healthy;
    }

    private bannerText(): string {
        return tr("Web/Disconnected from server since %1 — showing the last known state",
            clockText(new Date(this.staleSince ?? 0)));
    }

    private renderTime(): void {
        setText(this.asOf, this.readingTime === null ? "" : tr("Web/data as of %1", clockText(new Date(this.readingTime))));
    }

    private renderBanner(): void {
        setHidden(this.banner, this.staleSince === null);
        setText(this.banner, this.staleSince === null ? "" : this.bannerText());
    }
}
