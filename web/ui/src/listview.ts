// The batch list or the node list: its filter and sort (kept in the
// address), the grid, the selection and its actions.
import { confirmAndAct, needsConfirmation, run, type ActionPlan } from "./actions";
import type { Target } from "./api";
import { Priorities, priorityWord } from "./celltext";
import { element, setHidden, setText } from "./dom";
import { Grid, type GridColumn } from "./grid";
import { tr, trn } from "./i18n";
import { ListModel, type SortKey } from "./listmodel";
import { closeMenu, showMenu, type MenuItem } from "./menu";
import type { TableChange } from "./rowtable";
import type { ActionWord, Role, Status } from "./types";

export interface ListColumn {
    key: string;
    header: string;
    width: string;
}

export interface ListViewConfig<Row extends { status: Status }> {
    target: Target;
    title: string;
    columns: ListColumn[];
    statuses: string[];
    model: ListModel<Row>;
    actions: ActionWord[];
    emptyText: string;
    unmatchedText: string;
    describe(id: number): string;
    open?(id: number): void;
}

export interface ListQuery {
    status: string;
    text: string;
    sort: SortKey;
}

export class ListView<Row extends { status: Status }> {
    readonly root: HTMLElement;
    private readonly grid: Grid;
    private readonly heading: HTMLHeadingElement;
    private readonly statusSelect: HTMLSelectElement;
    private readonly statusLabel: HTMLLabelElement;
    private readonly search: HTMLInputElement;
    private readonly searchLabel: HTMLLabelElement;
    private readonly shown: HTMLElement;
    private readonly selectionBar: HTMLElement;
    private readonly selectionCount: HTMLElement;
    private readonly actionButtons: HTMLElement;
    private readonly clearButton: HTMLButtonElement;
    private readonly empty: HTMLElement;
    private readonly outcome: HTMLElement;
    private query: ListQuery = { status: "", text: "", sort: { column: 0, descending: false } };
    private role: Role = "viewer";

    constructor(private readonly config: ListViewConfig<Row>, private readonly onQuery: (query: ListQuery) => void) {
        const id = `${config.target}-heading`;
        this.root = element("section", { class: "list-view", "aria-labelledby": id });
        this.heading = element("h1", { id });
        const filters = element("div", { class: "filters", role: "search" });
        this.statusLabel = element("label", { for: `${config.target}-status` });
        this.statusSelect = element("select", { id: `${config.target}-status` });
        this.searchLabel = element("label", { for: `${config.target}-search` });
        this.search = element("input", { id: `${config.target}-search`, type: "search", autocomplete: "off" });
        this.shown = element("span", { class: "shown" });
        filters.append(this.statusLabel, this.statusSelect, this.searchLabel, this.search, this.shown);
        this.selectionBar = element("div", { class: "selection-bar" });
        this.selectionCount = element("span", { class: "selection-count" });
        this.actionButtons = element("span", { class: "action-buttons" });
        this.clearButton = element("button", { type: "button" });
        this.selectionBar.append(this.selectionCount, this.actionButtons, this.clearButton);
        this.outcome = element("p", { class: "outcome", role: "status" });
        const model = config.model;
        const columns: GridColumn[] = config.columns.map((column) => ({ header: () => tr(column.header), width: column.width }));
        this.grid = new Grid(columns, {
            order: () => model.order,
            cells: (rowId) => model.cells(rowId),
            version: (rowId) => model.table.version(rowId),
        }, {
            ...(config.open ? { open: config.open } : {}),
            menu: (ids, at) => this.menu(ids, at),
            sort: (column) => this.sortBy(column),
            selectionChanged: () => this.selectionChanged(),
        }, id);
        this.empty = element("p", { class: "empty" });
        this.root.append(this.heading, filters, this.selectionBar, this.outcome, this.grid.frame, this.empty);

        this.statusSelect.addEventListener("change", () => this.setQuery({ ...this.query, status: this.statusSelect.value }));
        this.search.addEventListener("input", () => this.setQuery({ ...this.query, text: this.search.value }));
        this.clearButton.addEventListener("click", () => this.grid.clearSelection());
        this.retranslate();
        this.selectionChanged();
    }

    setRole(role: Role): void {
        this.role = role;
        this.selectionChanged();
    }

    focusGrid(): void {
        this.grid.focus();
    }

    // The query from the address: filters, sort, and the controls that show them.
    applyQuery(query: ListQuery): void {
        this.query = query;
        this.statusSelect.value = query.status;
        if (this.search.value !== query.text)
            this.search.value = query.text;
        this.config.model.setView({ status: query.status, text: query.text }, query.sort);
        this.grid.setHeaders(query.sort);
        this.refresh();
    }

    tableChanged(change: TableChange): void {
        this.config.model.update(change);
        this.refresh();
    }

    retranslate(): void {
        setText(this.heading, this.config.title);
        setText(this.statusLabel, tr("Web/Filter"));
        this.statusSelect.replaceChildren(element("option", { value: "" }, tr("Web/All statuses")),
            ...this.config.statuses.map((word) => element("option", { value: word.toLowerCase() }, word)));
        this.statusSelect.value = this.query.status;
        setText(this.searchLabel, tr("Web/Search"));
        this.search.placeholder = tr("Web/Text in any column");
        setText(this.clearButton, tr("Web/Clear selection"));
        this.config.model.invalidate();
        this.config.model.setView({ status: this.query.status, text: this.query.text }, this.query.sort);
        this.grid.setHeaders(this.query.sort);
        this.selectionChanged();
        this.refresh();
    }

    private refresh(): void {
        this.grid.update();
        const model = this.config.model;
        setText(this.shown, tr("Web/Shown: %1 of %2", model.order.length, model.total));
        setText(this.empty, model.total === 0 ? this.config.emptyText : this.config.unmatchedText);
        setHidden(this.empty, model.order.length > 0);
    }

    private setQuery(query: ListQuery): void {
        this.applyQuery(query);
        this.onQuery(query);
    }

    private sortBy(column: number): void {
        const sort = this.query.sort;
        const descending = sort.column === column ? !sort.descending : false;
        this.setQuery({ ...this.query, sort: { column, descending } });
    }

    private actionLabel(action: ActionWord): string {
        switch (action) {
        case "pause":
            return tr("Monitor/Pause");
        case "resume":
            return tr("Monitor/Resume");
        case "abort":
            return tr("Monitor/Abort");
        case "stop":
            return tr("Monitor/Stop");
        default:
            return tr("Monitor/Set Priority");
        }
    }

    private selectionChanged(): void {
        const ids = this.grid.selected();
        setText(this.selectionCount, trn("Web/%n selected", ids.length));
        setHidden(this.selectionBar, ids.length === 0);
        this.actionButtons.replaceChildren();
        if (this.role !== "operator" || ids.length === 0)
            return;
        for (const action of this.config.actions) {
            if (action === "priority")
                continue;
            const button = element("button", { type: "button" }, this.actionLabel(action));
            button.addEventListener("click", () => this.start({ action, ids: this.grid.selected() }));
            this.actionButtons.append(button);
        }
        const priority = element("select", { "aria-label": tr("Monitor/Set Priority") });
        priority.append(element("option", { value: "" }, tr("Monitor/Set Priority")),
            ...Priorities.map((level) => element("option", { value: String(level) }, priorityWord(level))));
        priority.addEventListener("change", () => {
            if (priority.value === "")
                return;
            this.start({ action: "priority", ids: this.grid.selected(), priority: Number(priority.value) });
            priority.value = "";
        });
        this.actionButtons.append(priority);
    }

    private start(request: { action: ActionWord; ids: number[]; priority?: number }): void {
        if (request.ids.length === 0)
            return;
        const plan: ActionPlan = { target: this.config.target, describe: this.config.describe, ...request };
        if (needsConfirmation(plan)) {
            confirmAndAct(plan, () => undefined);
            return;
        }
        void run(plan).then((lines) => setText(this.outcome, lines.join("; ")));
    }

    private menu(ids: number[], at: { x: number; y: number }): void {
        const items: MenuItem[] = [];
        if (this.config.open && ids.length === 1) {
            const open = this.config.open;
            items.push({ label: tr("Monitor/Details..."), run: () => open(ids[0]!) });
        }
        if (this.role === "operator") {
            for (const action of this.config.actions) {
                if (action !== "priority")
                    items.push({ label: this.actionLabel(action), run: () => this.start({ action, ids }) });
            }
            items.push({ label: "", group: tr("Monitor/Set Priority") });
            for (const level of Priorities)
                items.push({ label: priorityWord(level), run: () => this.start({ action: "priority", ids, priority: level }) });
        }
        if (items.length === 0)
            return closeMenu();
        const label = ids.length === 1 ? tr("Web/Actions for #%1", ids[0]!) : tr("Web/Actions");
        showMenu(label, items, at);
    }
}
