// One list of the farm (batches or nodes) as the stream describes it: the
// rows by id, changed in place by each delta. Each row has a version that
// goes up when it changes, so a view redraws only the rows that did.
import type { RowChanges } from "./types";

export interface TableChange {
    // Rows added or removed: every order over the table is stale.
    structural: boolean;
    changed: Set<number>;
}

export class RowTable<Row extends object> {
    readonly rows = new Map<number, Row>();
    private readonly versions = new Map<number, number>();
    private nextVersion = 1;

    constructor(private readonly idOf: (row: Partial<Row>) => number | undefined) {}

    reset(rows: Row[]): TableChange {
        this.rows.clear();
        this.versions.clear();
        const changed = new Set<number>();
        for (const row of rows) {
            const id = this.idOf(row) as number;
            this.rows.set(id, row);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        return { structural: true, changed };
    }

    apply(changes: RowChanges<Row>): TableChange {
        const changed = new Set<number>();
        for (const id of changes.removed) {
            this.rows.delete(id);
            this.versions.delete(id);
        }
        for (const row of changes.added) {
            const id = this.idOf(row) as number;
            this.rows.set(id, row);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        for (const members of changes.changed) {
            const id = this.idOf(members);
            const row = id === undefined ? undefined : this.rows.get(id);
            if (id === undefined || !row)
                continue;
            Object.assign(row, members);
            this.versions.set(id, this.nextVersion++);
            changed.add(id);
        }
        return { structural: changes.added.length > 0 || changes.removed.length > 0, changed };
    }

    version(id: number): number {
        return this.versions.get(id) ?? 0;
    }
}
