// The texts the desktop monitor shows for a record, the same here: cells of
// the batch and node lists, the lines of a batch's tasks, and the words
// and formats they share. Status words are not translated.
import { tr, taskName } from "./i18n";
import type { Batch, FarmNode, NodeError, Status, Task } from "./types";

function two(value: number): string {
    return value < 0 ? String(value) : String(value).padStart(2, "0");
}

// Hours, minutes and seconds, each at least two digits: 3725.9 is 01:02:05,
// 360000 is 100:00:00; fields keep their sign: -61 is 00:-1:-1.
export function formatDuration(seconds: number): string {
    let total = 0;
    if (seconds >= 2147483647)
        total = 2147483647;
    else if (seconds <= -2147483648)
        total = -2147483648;
    else if (!Number.isNaN(seconds))
        total = Math.trunc(seconds);
    const hours = Math.trunc(total / 3600);
    const minutes = Math.trunc((total % 3600) / 60);
    const rest = total - hours * 3600 - minutes * 60;
    return `${two(hours)}:${two(minutes)}:${two(rest)}`;
}

const StatusWords: Record<Status, string> = {
    pending: "Pending",
    inprogress: "Working",
    completed: "Completed",
    paused: "Paused",
    aborted: "Aborted",
    ready: "Ready",
};

export function batchStatusWord(status: Status): string {
    return status === "ready" ? "" : StatusWords[status] ?? "";
}

export function nodeStatusWord(status: Status): string {
    return StatusWords[status] ?? "";
}

export const Priorities = [2, 1, 0, -1, -2] as const;

export function priorityWord(priority: number): string {
    switch (priority) {
    case 2:
        return tr("Monitor/Highest");
    case 1:
        return tr("Monitor/High");
    case 0:
        return tr("Monitor/Normal");
    case -1:
        return tr("Monitor/Low");
    case -2:
        return tr("Monitor/Lowest");
    default:
        return String(priority);
    }
}

function pad(value: number, width: number): string {
    return String(value).padStart(width, "0");
}

function sameDay(a: Date, b: Date): boolean {
    return a.getFullYear() === b.getFullYear() && a.getMonth() === b.getMonth() && a.getDate() === b.getDate();
}

export function clockText(date: Date): string {
    return `${pad(date.getHours(), 2)}:${pad(date.getMinutes(), 2)}:${pad(date.getSeconds(), 2)}`;
}

// "[hh:mm:ss]" for a time of today, else "[dd.MM.yyyy hh:mm:ss]".
export function errorStamp(time: number, today: Date): string {
    const date = new Date(time * 1000);
    if (sameDay(date, today))
        return `[${clockText(date)}]`;
    return `[${pad(date.getDate(), 2)}.${pad(date.getMonth() + 1, 2)}.${pad(date.getFullYear(), 4)} ${clockText(date)}]`;
}

// Local date and time as "yyyy-MM-dd hh:mm:ss".
export function startedText(time: number): string {
    const date = new Date(time * 1000);
    return `${pad(date.getFullYear(), 4)}-${pad(date.getMonth() + 1, 2)}-${pad(date.getDate(), 2)} ${clockText(date)}`;
}

export function projectName(path: string): string {
    return path.slice(path.lastIndexOf("/") + 1);
}

function oneDecimal(value: number): string {
    return value.toFixed(1);
}

export const BatchHeaders = ["#", "Project", "Started", "Status", "Priority", "Current Task", "Elapsed / Left",
    "Failures", "Nodes"] as const;
export const NodeHeaders = ["#", "Host", "Status", "Priority", "Batch #", "Progress", "Failures",
    "Last Error"] as const;

export function batchCells(batch: Batch): string[] {
    const task: Task = batch.task ?? {};
    let current = "";
    if (task.name)
        current = `${taskName(task.name)} (${oneDecimal(task.progress ?? 0)}%)`;
    let times: string;
    if (task.status === "pending") {
        times = tr("Monitor/Waiting...");
    } else {
        times = formatDuration(task.time_elapsed ?? 0);
        if (task.status === "inprogress" && (task.time_left ?? 0) > 0)
            times += " / " + formatDuration(task.time_left ?? 0);
    }
    const active = task.nodes_active ?? 0;
    return [
        String(batch.batch_id),
        projectName(batch.path),
        startedText(batch.time_started ?? 0),
        batchStatusWord(batch.status),
        priorityWord(batch.priority),
        current,
        times,
        String(task.nodes_failed ?? 0),
        `${active}/${active + (task.nodes_waiting ?? 0)}`,
    ];
}

function lastErrorText(error: NodeError | null, today: Date): string {
    if (!error || error.time === 0)
        return "";
    return `${errorStamp(error.time, today)} #${error.batch_id}: ${error.message}`;
}

export function nodeCells(node: FarmNode, today: Date): string[] {
    let host = node.hostname;
    const colon = host.lastIndexOf(":");
    if (colon >= 0)
        host = host.slice(0, colon);
    if (node.version)
        host += ` (${node.version})`;
    const busy = node.batch_id !== null;
    return [
        String(node.node_id),
        host,
        nodeStatusWord(node.status),
        priorityWord(node.priority),
        busy ? String(node.batch_id) : "",
        busy ? oneDecimal(node.progress ?? 0) + "%" : "",
        String(node.error_count ?? 0),
        lastErrorText(node.last_error, today),
    ];
}

// "Align Photos (12/40 completed, 3/4 nodes active, 2 failures)"
export function taskHeader(task: Task): string {
    const name = task.name ? taskName(task.name) : "";
    const active = task.nodes_active ?? 0;
    let summary = tr("TaskStatusWidget/%1/%2 completed", task.items_done ?? 0, task.items_total ?? 0);
    summary += ", " + tr("TaskStatusWidget/%1/%2 nodes active", active, active + (task.nodes_waiting ?? 0));
    if ((task.nodes_failed ?? 0) !== 0)
        summary += ", " + tr("TaskStatusWidget/%1 failures", task.nodes_failed ?? 0);
    return `${name} (${summary})`;
}

// "00:12:05 elapsed, 01:30:00 left", or "Waiting..."
export function taskFooter(task: Task): string {
    if (task.status === "pending")
        return tr("TaskStatusWidget/Waiting...");
    let text = formatDuration(task.time_elapsed ?? 0) + " " + tr("TaskStatusWidget/elapsed");
    if (task.status === "inprogress" && (task.time_left ?? 0) > 0)
        text += ", " + formatDuration(task.time_left ?? 0) + " " + tr("TaskStatusWidget/left");
    return text;
}

export function taskShowsBar(task: Task): boolean {
    return task.status === "inprogress";
}

export function taskProgressValue(task: Task): number {
    return Math.trunc(task.progress ?? 0);
}
