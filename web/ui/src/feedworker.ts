// The stream worker: reads the event stream, parses it and keeps both lists
// off the page's thread, so that the page only draws. The list out of sight
// costs the page nothing until it is shown; then it comes whole.
import { EventStream } from "./eventstream";
import type { FromFeed, ListUpdate, Sight, ToFeed } from "./feedmessages";
import { RowTable } from "./rowtable";
import type { Batch, BatchStatus, Delta, Farm, FarmNode, Reading, RowChanges, Snapshot } from "./types";

interface WorkerScope {
    postMessage(message: FromFeed): void;
    addEventListener(type: "message", listener: (event: MessageEvent<ToFeed>) => void): void;
}
const scope = self as unknown as WorkerScope;

const batches = new RowTable<Batch>((row) => row.batch_id);
const nodes = new RowTable<FarmNode>((row) => row.node_id);
let sight: Sight = "batches";
let haveSnapshot = false;
let lastEvent = Date.now();
// A delta waits here for the reading event the server sends after it.
let held: { batches: ListUpdate<Batch> | null; nodes: ListUpdate<FarmNode> | null } | null = null;
let holdTimer = 0;
// Longest wait for that reading: deltas sent again after a break come without one.
const HoldLimit = 100;
let countsSent = "";

function hasChanges<Row>(changes: RowChanges<Row>): boolean {
    return changes.added.length > 0 || changes.removed.length > 0 || changes.changed.length > 0;
}

function post(batchUpdate: ListUpdate<Batch> | null, nodeUpdate: ListUpdate<FarmNode> | null,
    reading: Reading | null): void {
    const key = `${[...batches.statusCounts].join()}|${[...nodes.statusCounts].join()}`;
    const counts = key === countsSent ? null : { batches: batches.statusCounts, nodes: nodes.statusCounts };
    countsSent = key;
    scope.postMessage({ kind: "update", batches: batchUpdate, nodes: nodeUpdate, counts, reading });
}

// Sends the held delta, with the reading when it has come.
function release(reading: Reading | null): void {
    self.clearTimeout(holdTimer);
    if (held || reading)
        post(held?.batches ?? null, held?.nodes ?? null, reading);
    held = null;
}

function hold(batchUpdate: ListUpdate<Batch> | null, nodeUpdate: ListUpdate<FarmNode> | null): void {
    release(null);
    held = { batches: batchUpdate, nodes: nodeUpdate };
    holdTimer = self.setTimeout(() => release(null), HoldLimit);
}

function whole(): void {
    release(null);
    post(sight === "batches" ? { reset: [...batches.rows.values()] } : null,
        sight === "nodes" ? { reset: [...nodes.rows.values()] } : null, null);
}

const stream = new EventStream({
    event: (event) => {
        lastEvent = Date.now();
        const data: unknown = JSON.parse(event.data);
        switch (event.type) {
        case "snapshot": {
            const snapshot = data as Snapshot;
            haveSnapshot = true;
            scope.postMessage({ kind: "farm", farm: snapshot.farm });
            batches.reset(snapshot.batches);
            nodes.reset(snapshot.nodes);
            whole();
            break;
        }
        case "delta": {
            const delta = data as Delta;
            batches.apply(delta.batches);
            nodes.apply(delta.nodes);
            hold(sight === "batches" && hasChanges(delta.batches) ? { changes: delta.batches } : null,
                sight === "nodes" && hasChanges(delta.nodes) ? { changes: delta.nodes } : null);
            break;
        }
        case "farm":
            release(null);
            scope.postMessage({ kind: "farm", farm: data as Farm });
            break;
        case "reading":
            release(data as Reading);
            break;
        case "batch":
            scope.postMessage({ kind: "batch", status: data as BatchStatus });
            break;
        }
    },
    link: (up) => scope.postMessage({ kind: "link", up, lastEvent }),
});

scope.addEventListener("message", ({ data: message }) => {
    switch (message.kind) {
    case "view":
        if (message.sight !== sight) {
            sight = message.sight;
            if (haveSnapshot)
                whole();
        }
        stream.follow(message.batch);
        break;
    case "quietLimit":
        stream.setQuietLimit(message.milliseconds);
        break;
    }
});
