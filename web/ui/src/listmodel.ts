// What a list view shows of a table: the rows its filter lets through, in
// its sort order, each with its cell texts, computed once per row version.
import type { RowTable, TableChange } from "./rowtable";
import type { Status } from "./types";

export interface SortKey {
    column: number;
    descending: boolean;
}

export interface ListFilter {
    // A status word in lower case ("working"), or "" for every status.
    status: string;
    // Text that one of the row's cells contains, in any case.
    text: string;
}

interface CachedRow {
    version: number;
    cells: string[];
    // The cells in lower case for the text filter, made when it first asks.
    folded: string | null;
}

export class ListModel<Row extends { status: Status }> {
    order: number[] = [];
    private readonly cache = new Map<number, CachedRow>();
    private filter: ListFilter = { status: "", text: "" };
    private sort: SortKey = { column: 0, descending: false };

    constructor(
        readonly table: RowTable<Row>,
        private readonly cellsOf: (row: Row) => string[],
        private readonly statusOf: (row: Row) => string,
        // Sort values of columns that do not sort by their text.
        private readonly numeric: ReadonlyMap<number, (row: Row) => number>,
    ) {}

    cells(id: number): string[] {
        return this.cached(id).cells;
    }

    // Texts change with the language or the day: every row is written anew.
    invalidate(): void {
        this.cache.clear();
    }

    setView(filter: ListFilter, sort: SortKey): void {
        this.filter = { status: filter.status, text: filter.text.toLowerCase() };
        this.sort = sort;
        this.rebuild();
    }

    get total(): number {
        return this.table.rows.size;
    }

    // After a change of the table.
    update(change: TableChange): void {
        // Sorted by id and unfiltered, a change inside rows moves none of them.
        const plain = this.sort.column === 0 && !this.filter.status && !this.filter.text;
        if (change.structural || (!plain && change.changed.size > 0))
            this.rebuild();
    }

    private cached(id: number): CachedRow {
        const version = this.table.version(id);
        let entry = this.cache.get(id);
        if (!entry || entry.version !== version) {
            const row = this.table.rows.get(id);
            const cells = row ? this.cellsOf(row) : [];
            entry = { version, cells, folded: null };
            this.cache.set(id, entry);
        }
        return entry;
    }

    private folded(id: number): string {
        const entry = this.cached(id);
        entry.folded ??= entry.cells.join("\u0001").toLowerCase();
        return entry.folded;
    }

    private rebuild(): void {
        const ids: number[] = [];
        const { status, text } = this.filter;
        for (const [id, row] of this.table.rows) {
            if (status && this.statusOf(row).toLowerCase() !== status)
                continue;
            if (text && !this.folded(id).includes(text))
                continue;
            ids.push(id);
        }
        for (const id of this.cache.keys()) {
            if (!this.table.rows.has(id))
                this.cache.delete(id);
        }
        const { column, descending } = this.sort;
        const sign = descending ? -1 : 1;
        const value = this.numeric.get(column);
        const rows = this.table.rows;
        if (value) {
            ids.sort((a, b) => sign * (value(rows.get(a) as Row) - value(rows.get(b) as Row)) || a - b);
        } else {
            const collator = new Intl.Collator(undefined, { numeric: true });
            ids.sort((a, b) => sign * collator.compare(this.cached(a).cells[column] ?? "",
                this.cached(b).cells[column] ?? "") || a - b);
        }
        this.order = ids;
    }
}
