// The API's records as the page receives them (see /api/v1/openapi.json).

export type Status = "pending" | "inprogress" | "completed" | "paused" | "aborted" | "ready";
export type Role = "viewer" | "operator";

export interface Task {
    name?: string;
    status?: Status;
    time_elapsed?: number;
    time_left?: number;
    progress?: number;
    items_total?: number;
    items_done?: number;
    nodes_active?: number;
    nodes_waiting?: number;
    nodes_failed?: number;
}

export interface Batch {
    batch_id: number;
    path: string;
    status: Status;
    priority: number;
    time_started?: number;
    task?: Task;
}

export interface NodeError {
    time: number;
    batch_id: number;
    message: string;
}

export interface FarmNode {
    node_id: number;
    hostname: string;
    version?: string;
    status: Status;
    priority: number;
    batch_id: number | null;
    progress: number | null;
    task: { name: string } | null;
    error_count?: number;
    last_error: NodeError | null;
}

export interface Farm {
    state: "connected" | "disconnected";
    since: number;
    reason?: string;
    next_try?: number;
}

export interface Snapshot {
    seq: number;
    farm: Farm;
    batches: Batch[];
    nodes: FarmNode[];
}

export interface RowChanges<Row> {
    added: Row[];
    removed: number[];
    changed: Partial<Row>[];
}

export interface Delta {
    seq: number;
    batches: RowChanges<Batch>;
    nodes: RowChanges<FarmNode>;
}

export interface Reading {
    time: number;
    interval: number;
}

export interface BatchStatus {
    batch_id: number;
    path: string;
    status: Status;
    priority: number;
    tasks: Task[];
    last_error: { time: number; node_id: number; message: string } | null;
}

export interface WhoAmI {
    user: string | null;
    role: Role;
}

export type ActionWord = "pause" | "resume" | "abort" | "stop" | "priority";
export type ResultWord = "accepted" | "refused" | "unreachable" | "timed out";

export interface ActionResults {
    action: ActionWord;
    results: { id: number; result: ResultWord; reason?: string }[];
}

export interface Problem {
    type: string;
    title: string;
    status: number;
    detail?: string;
}
