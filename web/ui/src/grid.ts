// A list as a WAI-ARIA grid that draws only the rows in sight, so ten
// thousand rows cost what thirty do. The arrows, Home/End and Page Up/Down
// move the focus cell by cell; Enter opens a row (or sorts by a header);
// Space selects; Shift+F10 and the Menu key open the row's actions. Rows
// keep their element while they stay in sight, so the focus survives
// every update.

export interface GridColumn {
    header: () => string;
    width: string;
}

export interface GridSource {
    order(): readonly number[];
    cells(id: number): readonly string[];
    version(id: number): number;
}

export interface GridHandlers {
    open?(id: number): void;
    menu(ids: number[], anchor: { x: number; y: number }): void;
    sort(column: number): void;
    selectionChanged(): void;
}

// What the row's element shows, kept beside it: reading the DOM back costs more.
interface RowElement extends HTMLDivElement {
    rowId: number;
    version: number;
    index: number;
    selected: boolean | null;
    texts: string[];
}

const RowHeight = 32;
const Overscan = 8;

export class Grid {
    readonly frame: HTMLDivElement;
    readonly element: HTMLDivElement;
    private readonly head: HTMLDivElement;
    private readonly body: HTMLDivElement;
    private readonly headerCells: HTMLDivElement[] = [];
    private readonly rows = new Map<number, RowElement>();
    private readonly spare: RowElement[] = [];
    private readonly selection = new Set<number>();
    private activeRow = -1; // -1 is the header row
    private activeColumn = 0;
    private activeId: number | null = null;
    private anchorId: number | null = null;
    private textsEpoch = 0;
    private measuredEpoch = -1;
    private frameHeight = 600;
    private scheduled = false;
    // The one cell in the tab order.
    private tabStop: HTMLElement;

    constructor(
        private readonly columns: GridColumn[],
        private readonly source: GridSource,
        private readonly handlers: GridHandlers,
        labelledBy: string,
    ) {
        this.frame = document.createElement("div");
        this.frame.className = "grid-frame";
        this.element = document.createElement("div");
        this.element.className = "grid";
        this.element.setAttribute("role", "grid");
        this.element.setAttribute("aria-labelledby", labelledBy);
        this.element.setAttribute("aria-multiselectable", "true");
        this.element.setAttribute("aria-colcount", String(columns.length));
        this.element.style.setProperty("--grid-columns", columns.map((column) => column.width).join(" "));
        this.head = document.createElement("div");
        this.head.className = "grid-head";
        this.head.setAttribute("role", "rowgroup");
        const headRow = document.createElement("div");
        headRow.className = "grid-row";
        headRow.setAttribute("role", "row");
        headRow.setAttribute("aria-rowindex", "1");
        columns.forEach((_, index) => {
            const cell = document.createElement("div");
            cell.className = "grid-cell grid-header";
            cell.setAttribute("role", "columnheader");
            cell.setAttribute("aria-colindex", String(index + 1));
            cell.tabIndex = -1;
            cell.dataset["column"] = String(index);
            headRow.append(cell);
            this.headerCells.push(cell);
        });
        this.head.append(headRow);
        this.body = document.createElement("div");
        this.body.className = "grid-body";
        this.body.setAttribute("role", "rowgroup");
        this.element.append(this.head, this.body);
        this.frame.append(this.element);
        this.tabStop = this.headerCells[0]!;
        this.tabStop.tabIndex = 0;

        this.frame.addEventListener("scroll", () => this.schedule(), { passive: true });
        this.element.addEventListener("keydown", (event) => this.key(event));
        this.element.addEventListener("click", (event) => this.click(event));
        this.element.addEventListener("dblclick", (event) => this.doubleClick(event));
        this.element.addEventListener("contextmenu", (event) => this.contextMenu(event));
        this.element.addEventListener("focusin", (event) => this.focusIn(event));
        new ResizeObserver(() => {
            this.frameHeight = this.frame.clientHeight || this.frameHeight;
            this.schedule();
        }).observe(this.frame);
    }

    // Header texts and sort marks; every cell is written anew after a change of language.
    setHeaders(sort: { column: number; descending: boolean }): void {
        this.headerCells.forEach((cell, index) => {
            cell.textContent = this.columns[index]!.header();
            if (index === sort.column)
                cell.setAttribute("aria-sort", sort.descending ? "descending" : "ascending");
            else
                cell.removeAttribute("aria-sort");
        });
        this.textsEpoch += 1;
    }

    selected(): number[] {
        return this.source.order().filter((id) => this.selection.has(id));
    }

    clearSelection(): void {
        this.selection.clear();
        this.render();
        this.handlers.selectionChanged();
    }

    // After the order or rows changed: the focus stays on its row, wherever it went.
    update(): void {
        const order = this.source.order();
        let selectionChanged = false;
        if (this.selection.size > 0) {
            const shown = new Set(order);
            for (const id of this.selection) {
                if (!shown.has(id)) {
                    this.selection.delete(id);
                    selectionChanged = true;
                }
            }
        }
        if (this.activeId !== null) {
            const index = order.indexOf(this.activeId);
            if (index >= 0) {
                this.activeRow = index;
            } else {
                this.activeRow = Math.min(this.activeRow, order.length - 1);
                this.activeId = this.activeRow >= 0 ? order[this.activeRow]! : null;
            }
        }
        const rowCount = String(order.length + 1);
        if (this.element.getAttribute("aria-rowcount") !== rowCount) {
            this.element.setAttribute("aria-rowcount", rowCount);
            this.body.style.height = `${order.length * RowHeight}px`;
        }
        this.render();
        if (selectionChanged)
            this.handlers.selectionChanged();
    }

    focus(): void {
        this.activeCell()?.focus();
    }

    private schedule(): void {
        if (this.scheduled)
            return;
        this.scheduled = true;
        requestAnimationFrame(() => {
            this.scheduled = false;
            this.render();
        });
    }

    // Columns as wide as their header needs at least: a longer word in
    // another language widens its column instead of being cut.
    private fitHeaders(): void {
        if (this.measuredEpoch === this.textsEpoch || !this.element.isConnected)
            return;
        this.measuredEpoch = this.textsEpoch;
        const range = document.createRange();
        const widths = this.headerCells.map((cell, index) => {
            range.selectNodeContents(cell);
            // the text, the cell's padding and the sort mark
            const needed = Math.ceil(range.getBoundingClientRect().width) + 32;
            return `max(${this.columns[index]!.width}, ${needed}px)`;
        });
        this.element.style.setProperty("--grid-columns", widths.join(" "));
    }

    private render(): void {
        this.fitHeaders();
        const order = this.source.order();
        const top = this.frame.scrollTop;
        const first = Math.max(0, Math.floor(top / RowHeight) - Overscan);
        const last = Math.min(order.length, Math.ceil((top + this.frameHeight) / RowHeight) + Overscan);
        const wanted = new Map<number, number>();
        for (let index = first; index < last; ++index)
            wanted.set(order[index]!, index);
        if (this.activeId !== null && this.activeRow >= 0)
            wanted.set(this.activeId, this.activeRow);
        const hadFocus = this.element.contains(document.activeElement);
        for (const [id, row] of this.rows) {
            if (!wanted.has(id)) {
                this.rows.delete(id);
                row.remove();
                this.spare.push(row);
            }
        }
        for (const [id, index] of wanted)
            this.place(id, index);
        this.markActive(hadFocus);
    }

    private place(id: number, index: number): void {
        let row = this.rows.get(id);
        if (!row) {
            row = this.spare.pop() ?? this.makeRow();
            row.rowId = id;
            row.version = -1;
            this.rows.set(id, row);
            this.body.append(row);
        }
        if (row.index !== index) {
            row.index = index;
            row.style.top = `${index * RowHeight}px`;
            row.setAttribute("aria-rowindex", String(index + 2));
        }
        const selected = this.selection.has(id);
        if (row.selected !== selected) {
            row.selected = selected;
            row.setAttribute("aria-selected", selected ? "true" : "false");
        }
        const version = this.source.version(id) * 1000 + this.textsEpoch;
        if (row.version === version)
            return;
        row.version = version;
        const cells = this.source.cells(id);
        for (let column = 0; column < this.columns.length; ++column) {
            const text = cells[column] ?? "";
            if (row.texts[column] !== text) {
                row.texts[column] = text;
                (row.children[column] as HTMLElement).textContent = text;
            }
        }
    }

    private makeRow(): RowElement {
        const row = document.createElement("div") as RowElement;
        row.className = "grid-row";
        row.setAttribute("role", "row");
        row.index = -1;
        row.selected = null;
        row.texts = [];
        for (let column = 0; column < this.columns.length; ++column) {
            const cell = document.createElement("div");
            cell.className = "grid-cell";
            cell.setAttribute("role", "gridcell");
            cell.setAttribute("aria-colindex", String(column + 1));
            cell.tabIndex = -1;
            row.append(cell);
            row.texts.push("");
        }
        return row;
    }

    private activeCell(): HTMLElement | null {
        if (this.activeRow < 0 || this.activeId === null)
            return this.headerCells[this.activeColumn] ?? null;
        return (this.rows.get(this.activeId)?.children[this.activeColumn] as HTMLElement | undefined) ?? null;
    }

    // One cell of the grid is in the tab order: the active one.
    private markActive(focus: boolean): void {
        const cell = this.activeCell();
        if (!cell)
            return;
        if (cell !== this.tabStop) {
            this.tabStop.tabIndex = -1;
            cell.tabIndex = 0;
            this.tabStop = cell;
        }
        if (focus && document.activeElement !== cell)
            cell.focus({ preventScroll: true });
    }

    private moveTo(row: number, column: number): void {
        const order = this.source.order();
        this.activeRow = Math.max(-1, Math.min(row, order.length - 1));
        this.activeColumn = Math.max(0, Math.min(column, this.columns.length - 1));
        this.activeId = this.activeRow >= 0 ? order[this.activeRow]! : null;
        if (this.activeRow >= 0) {
            const top = this.activeRow * RowHeight;
            const headHeight = this.head.offsetHeight;
            if (top < this.frame.scrollTop)
                this.frame.scrollTop = top;
            else if (top + RowHeight + headHeight > this.frame.scrollTop + this.frame.clientHeight)
                this.frame.scrollTop = top + RowHeight + headHeight - this.frame.clientHeight;
        } else {
            this.frame.scrollTop = 0;
        }
        this.render();
        this.activeCell()?.focus({ preventScroll: true });
    }

    private toggle(id: number): void {
        if (this.selection.has(id))
            this.selection.delete(id);
        else
            this.selection.add(id);
        this.anchorId = id;
        this.render();
        this.handlers.selectionChanged();
    }

    private selectOnly(id: number): void {
        this.selection.clear();
        this.selection.add(id);
        this.anchorId = id;
        this.render();
        this.handlers.selectionChanged();
    }

    private selectRange(id: number): void {
        const order = this.source.order();
        const from = this.anchorId === null ? -1 : order.indexOf(this.anchorId);
        const to = order.indexOf(id);
        if (from < 0 || to < 0)
            return this.selectOnly(id);
        this.selection.clear();
        for (let index = Math.min(from, to); index <= Math.max(from, to); ++index)
            this.selection.add(order[index]!);
        this.render();
        this.handlers.selectionChanged();
    }

    // The rows an action is for: the selection when the row is in it, else the row alone.
    private targets(id: number): number[] {
        if (this.selection.has(id))
            return this.selected();
        this.selectOnly(id);
        return [id];
    }

    private openMenu(anchor: { x: number; y: number }): void {
        if (this.activeId === null)
            return;
        this.handlers.menu(this.targets(this.activeId), anchor);
    }

    private key(event: KeyboardEvent): void {
        const order = this.source.order();
        const page = Math.max(1, Math.floor((this.frame.clientHeight - this.head.offsetHeight) / RowHeight) - 1);
        let handled = true;
        switch (event.key) {
        case "ArrowDown":
            this.moveTo(this.activeRow + 1, this.activeColumn);
            break;
        case "ArrowUp":
            this.moveTo(this.activeRow - 1, this.activeColumn);
            break;
        case "ArrowRight":
            this.moveTo(this.activeRow, this.activeColumn + 1);
            break;
        case "ArrowLeft":
            this.moveTo(this.activeRow, this.activeColumn - 1);
            break;
        case "Home":
            this.moveTo(order.length > 0 ? 0 : -1, event.ctrlKey ? 0 : this.activeColumn);
            break;
        case "End":
            this.moveTo(order.length - 1, event.ctrlKey ? this.columns.length - 1 : this.activeColumn);
            break;
        case "PageDown":
            this.moveTo(this.activeRow + page, this.activeColumn);
            break;
        case "PageUp":
            this.moveTo(Math.max(this.activeRow - page, 0), this.activeColumn);
            break;
        case "Enter":
            if (this.activeRow < 0)
                this.handlers.sort(this.activeColumn);
            else if (this.activeId !== null)
                this.handlers.open?.(this.activeId);
            break;
        case " ":
            if (this.activeId !== null && this.activeRow >= 0)
                this.toggle(this.activeId);
            break;
        case "ContextMenu":
            this.openMenu(this.cellCorner());
            break;
        case "F10":
            if (event.shiftKey)
                this.openMenu(this.cellCorner());
            else
                handled = false;
            break;
        case "a":
            if (event.ctrlKey || event.metaKey) {
                order.forEach((id) => this.selection.add(id));
                this.render();
                this.handlers.selectionChanged();
            } else {
                handled = false;
            }
            break;
        default:
            handled = false;
        }
        if (handled)
            event.preventDefault();
    }

    private cellCorner(): { x: number; y: number } {
        const rect = this.activeCell()?.getBoundingClientRect();
        return rect ? { x: rect.left + 8, y: rect.bottom } : { x: 16, y: 16 };
    }

    private locate(target: EventTarget | null): { row: RowElement | null; column: number; header: boolean } | null {
        const cell = (target as HTMLElement | null)?.closest?.<HTMLElement>(".grid-cell");
        if (!cell || !this.element.contains(cell))
            return null;
        const column = Number(cell.getAttribute("aria-colindex")) - 1;
        if (cell.classList.contains("grid-header"))
            return { row: null, column, header: true };
        return { row: cell.parentElement as RowElement, column, header: false };
    }

    private focusIn(event: FocusEvent): void {
        const place = this.locate(event.target);
        if (!place)
            return;
        this.activeColumn = place.column;
        if (place.header) {
            this.activeRow = -1;
            this.activeId = null;
        } else if (place.row) {
            this.activeId = place.row.rowId;
            this.activeRow = this.source.order().indexOf(place.row.rowId);
        }
        this.markActive(false);
    }

    private click(event: MouseEvent): void {
        const place = this.locate(event.target);
        if (!place)
            return;
        if (place.header) {
            this.handlers.sort(place.column);
            return;
        }
        if (!place.row)
            return;
        const id = place.row.rowId;
        if (event.shiftKey)
            this.selectRange(id);
        else if (event.ctrlKey || event.metaKey)
            this.toggle(id);
        else
            this.selectOnly(id);
    }

    private doubleClick(event: MouseEvent): void {
        const place = this.locate(event.target);
        if (place?.row)
            this.handlers.open?.(place.row.rowId);
    }

    private contextMenu(event: MouseEvent): void {
        const place = this.locate(event.target);
        if (!place?.row)
            return;
        event.preventDefault();
        (place.row.children[place.column] as HTMLElement | undefined)?.focus({ preventScroll: true });
        this.handlers.menu(this.targets(place.row.rowId), { x: event.clientX, y: event.clientY });
    }
}
