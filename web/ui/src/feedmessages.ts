// What the page and the stream worker tell each other. The worker reads the
// event stream and keeps both lists; the page gets the changes of the list
// it shows, the counts of both, and the rest of the stream as it comes.
import type { Batch, BatchStatus, Farm, FarmNode, Reading, RowChanges, Status } from "./types";

// The list the page shows: "batches" also for one batch's details.
export type Sight = "batches" | "nodes";

export type ToFeed =
    // Which list to send, and the batch whose status the stream is to carry too.
    | { kind: "view"; sight: Sight; batch: number | null }
    | { kind: "quietLimit"; milliseconds: number };

// A list's rows anew (after a snapshot, or when it comes into sight), or its changes.
export type ListUpdate<Row> = { reset: Row[] } | { changes: RowChanges<Row> };

export type FromFeed =
    // A reading's changes and its time come together, so that the page
    // draws them in one frame; a snapshot or a list coming into sight has
    // no reading.
    | {
        kind: "update";
        batches: ListUpdate<Batch> | null;
        nodes: ListUpdate<FarmNode> | null;
        // The rows of both lists by status, when they changed.
        counts: { batches: Map<Status, number>; nodes: Map<Status, number> } | null;
        reading: Reading | null;
    }
    | { kind: "farm"; farm: Farm }
    | { kind: "batch"; status: BatchStatus }
    // The stream is up, or down since its last event (milliseconds since the epoch).
    | { kind: "link"; up: boolean; lastEvent: number };
