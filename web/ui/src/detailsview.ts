// One batch, followed live while the view is open: its tasks with their
// progress, times and status, and its last error.
import { errorStamp, priorityWord, batchStatusWord, taskFooter, taskHeader, taskProgressValue, taskShowsBar } from "./celltext";
import { element, setHidden, setText } from "./dom";
import { tr } from "./i18n";
import type { BatchStatus } from "./types";

export class DetailsView {
    readonly root: HTMLElement;
    private readonly heading: HTMLHeadingElement;
    private readonly back: HTMLAnchorElement;
    private readonly facts: HTMLElement;
    private readonly tasksHeading: HTMLHeadingElement;
    private readonly tasks: HTMLOListElement;
    private readonly errorLine: HTMLElement;
    private readonly missing: HTMLElement;
    private id = 0;
    private status: BatchStatus | null = null;

    constructor(navigate: (path: string) => void) {
        this.root = element("section", { class: "details-view", "aria-labelledby": "details-heading" });
        this.heading = element("h1", { id: "details-heading", tabindex: "-1" });
        this.back = element("a", { href: "/batches", class: "back" });
        this.back.addEventListener("click", (event) => {
            event.preventDefault();
            navigate("/batches");
        });
        this.facts = element("p", { class: "facts" });
        this.tasksHeading = element("h2", { id: "tasks-heading" });
        this.tasks = element("ol", { class: "tasks", "aria-labelledby": "tasks-heading" });
        this.errorLine = element("p", { class: "last-error" });
        this.missing = element("p", { class: "empty", role: "status" });
        this.root.append(this.back, this.heading, this.facts, this.missing, this.tasksHeading, this.tasks, this.errorLine);
    }

    show(id: number): void {
        if (id !== this.id) {
            this.id = id;
            this.status = null;
            this.tasks.replaceChildren();
        }
        this.render();
    }

    get batchId(): number {
        return this.id;
    }

    update(status: BatchStatus): void {
        if (status.batch_id !== this.id)
            return;
        this.status = status;
        this.render();
    }

    // The farm no longer has the batch, or never had it.
    setMissing(missing: boolean): void {
        setText(this.missing, missing ? tr("Web/The farm has no batch #%1", this.id) : "");
        setHidden(this.missing, !missing);
    }

    focusHeading(): void {
        this.heading.focus();
    }

    render(): void {
        setText(this.heading, tr("Web/Batch #%1", this.id));
        setText(this.back, tr("Web/Back to the batch list"));
        setText(this.tasksHeading, tr("BatchDetailsDialog/Tasks"));
        const status = this.status;
        if (!status) {
            setText(this.facts, tr("Web/Loading..."));
            setHidden(this.errorLine, true);
            return;
        }
        setText(this.facts, `${tr("BatchDetailsDialog/Project:")} ${status.path} · ${batchStatusWord(status.status)} · ${priorityWord(status.priority)}`);
        while (this.tasks.children.length > status.tasks.length)
            this.tasks.lastElementChild?.remove();
        status.tasks.forEach((task, index) => {
            let item = this.tasks.children[index] as HTMLLIElement | undefined;
            if (!item) {
                item = element("li", { class: "task" });
                const bar = element("progress", { max: "100" });
                item.append(element("div", { class: "task-header" }), bar, element("div", { class: "task-footer" }));
                this.tasks.append(item);
            }
            const header = taskHeader(task);
            setText(item.children[0]!, header);
            const bar = item.children[1] as HTMLProgressElement;
            setHidden(bar, !taskShowsBar(task));
            bar.value = taskProgressValue(task);
            bar.setAttribute("aria-label", header);
            setText(item.children[2]!, taskFooter(task));
        });
        const error = status.last_error;
        setHidden(this.errorLine, !error);
        if (error)
            setText(this.errorLine, `${tr("BatchDetailsDialog/Last error:")} ${errorStamp(error.time, new Date())} ${error.message}`);
    }
}
