// The comparison page: what a first attempt would do. EventSource, the rows
// kept in a Map, and every row of the table written anew as HTML on every
// snapshot and every delta.
"use strict";

const batches = new Map();
const nodes = new Map();
const body = document.querySelector("tbody");
const table = document.querySelector("table");
const counts = document.querySelectorAll(".summary-counts");
const words = { pending: "Pending", inprogress: "Working", completed: "Completed", paused: "Paused",
    aborted: "Aborted", ready: "Ready" };
const priorities = { 2: "Highest", 1: "High", 0: "Normal", "-1": "Low", "-2": "Lowest" };

function escape(text) {
    return String(text).replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;");
}

function duration(seconds) {
    const total = Math.trunc(seconds || 0);
    const two = (value) => String(value).padStart(2, "0");
    return `${two(Math.trunc(total / 3600))}:${two(Math.trunc((total % 3600) / 60))}:${two(total % 60)}`;
}

function cells(batch) {
    const task = batch.task || {};
    const active = task.nodes_active || 0;
    let times = task.status === "pending" ? "Waiting..." : duration(task.time_elapsed);
    if (task.status === "inprogress" && task.time_left > 0)
        times += " / " + duration(task.time_left);
    return [
        batch.batch_id,
        batch.path.slice(batch.path.lastIndexOf("/") + 1),
        new Date((batch.time_started || 0) * 1000).toLocaleString(),
        words[batch.status] || "",
        priorities[batch.priority] ?? batch.priority,
        task.name ? `${task.name} (${(task.progress || 0).toFixed(1)}%)` : "",
        times,
        task.nodes_failed || 0,
        `${active}/${active + (task.nodes_waiting || 0)}`,
    ];
}

function summary(rows) {
    const count = {};
    for (const row of rows.values())
        count[row.status] = (count[row.status] || 0) + 1;
    return Object.keys(count).map((status) => `${words[status]} ${count[status]}`).join(" · ");
}

function render() {
    let html = "";
    let index = 2;
    for (const batch of batches.values()) {
        html += `<tr role="row" aria-rowindex="${index++}">`;
        for (const text of cells(batch))
            html += `<td>${escape(text)}</td>`;
        html += "</tr>";
    }
    body.innerHTML = html;
    table.setAttribute("aria-rowcount", String(batches.size + 1));
    counts[0].textContent = summary(batches);
    counts[1].textContent = summary(nodes);
}

function apply(map, key, changes) {
    for (const id of changes.removed)
        map.delete(id);
    for (const row of changes.added)
        map.set(row[key], row);
    for (const members of changes.changed) {
        const row = map.get(members[key]);
        if (row)
            Object.assign(row, members);
    }
}

const events = new EventSource("/api/v1/events");
events.addEventListener("snapshot", (event) => {
    const snapshot = JSON.parse(event.data);
    batches.clear();
    nodes.clear();
    for (const batch of snapshot.batches)
        batches.set(batch.batch_id, batch);
    for (const node of snapshot.nodes)
        nodes.set(node.node_id, node);
    render();
});
events.addEventListener("delta", (event) => {
    const delta = JSON.parse(event.data);
    apply(batches, "batch_id", delta.batches);
    apply(nodes, "node_id", delta.nodes);
    render();
});
