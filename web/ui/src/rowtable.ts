// One list of the farm (batches or nodes) as the stream describes it: the
// rows by id, changed in place by each delta. Each row has a version that
// goes up when it changes, so a view redraws only the rows that did; the
// rows by status are counted as they change, not by a pass over all of them.
import type { RowChanges, Status } from "./types";

export interface TableChange {
    // Rows added or removed: every order over the table is stale.
    structural: boolean;
    changed: Set<number>;
}

export class RowTable<Row extends { status: Status }> {
    readonly rows = new Map<number, Row>();
    readonly statusCounts = new Map<Status, number>();
    private readonly versions = new Map<number, number>();
    private nextVersion = 1;

    constructor(private readonly idOf: (row: Partial<Row>) => number | undefined) {}

    reset(rows: Row[]): TableChange {
        this.rows.clear();
        this.versions.clear();
        this.statusCounts.clear();
        const changed = new Set<number>();
        for (const row of rows) {
            const id = this.idOf(row) as number;
            this.rows.set(id, row);
            this.count(row.status, 1);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        return { structural: true, changed };
    }

    apply(changes: RowChanges<Row>): TableChange {
        const changed = new Set<number>();
        for (const id of changes.removed) {
            const row = this.rows.get(id);
            if (row)
                this.count(row.status, -1);
            this.rows.delete(id);
            this.versions.delete(id);
        }
        for (const row of changes.added) {
            const id = this.idOf(row) as number;
            const old = this.rows.get(id);
            if (old)
                this.count(old.status, -1);
            this.rows.set(id, row);
            this.count(row.status, 1);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        for (const members of changes.changed) {
            const id = this.idOf(members);
            const row = id === undefined ? undefined : this.rows.get(id);
            if (id === undefined || !row)
                continue;
            if (members.status !== undefined && members.status !== row.status) {
                this.count(row.status, -1);
                this.count(members.status, 1);
            }
            Object.assign(row, members);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        return { structural: changes.added.length > 0 || changes.removed.length > 0, changed };
    }

    private count(status: Status, by: number): void {
        const count = (this.statusCounts.get(status) ?? 0) + by;
        if (count > 0)
            this.statusCounts.set(status, count);
        else
            this.statusCounts.delete(status);
    }

    version(id: number): number {
        return this.versions.get(id) ?? 0;
    }
}
