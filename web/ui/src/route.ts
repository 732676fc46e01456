// The view an address names, and the list queries in its search part:
// /batches?status=working&q=castle&sort=-priority
import type { ListQuery } from "./listview";

export type Route =
    | { view: "batches"; query: ListQuery }
    | { view: "nodes"; query: ListQuery }
    | { view: "details"; id: number };

export function parseRoute(location: { pathname: string; search: string }, columns: {
    batches: readonly string[];
    nodes: readonly string[];
}): Route {
    const details = /^\/batches\/(\d{1,10})$/.exec(location.pathname);
    if (details)
        return { view: "details", id: Number(details[1]) };
    const view = location.pathname === "/nodes" ? "nodes" : "batches";
    const params = new URLSearchParams(location.search);
    const sortParam = params.get("sort") ?? "";
    const descending = sortParam.startsWith("-");
    const column = Math.max(0, columns[view].indexOf(descending ? sortParam.slice(1) : sortParam));
    return {
        view,
        query: {
            status: (params.get("status") ?? "").toLowerCase(),
            text: params.get("q") ?? "",
            sort: { column, descending },
        },
    };
}

export function listAddress(view: "batches" | "nodes", query: ListQuery, columns: readonly string[]): string {
    const params = new URLSearchParams();
    if (query.status)
        params.set("status", query.status);
    if (query.text)
        params.set("q", query.text);
    if (query.sort.column !== 0 || query.sort.descending)
        params.set("sort", (query.sort.descending ? "-" : "") + columns[query.sort.column]);
    const search = params.toString();
    return `/${view}${search ? "?" + search : ""}`;
}
