// Acting on rows: the confirmation that names every target, the request,
// and each row's own result.
import { act, ApiError, type Target } from "./api";
import { priorityWord } from "./celltext";
import { tr, trn } from "./i18n";
import type { ActionResults, ActionWord } from "./types";

export interface ActionPlan {
    target: Target;
    action: ActionWord;
    ids: number[];
    priority?: number;
    // "#3 castle.kproj"
    describe: (id: number) => string;
}

const ConfirmTexts: Record<Target, Partial<Record<ActionWord, string>>> = {
    batches: {
        pause: "Web/Pause %n batches: %1",
        resume: "Web/Resume %n batches: %1",
        abort: "Web/Abort %n batches: %1",
    },
    nodes: {
        pause: "Web/Pause %n nodes: %1",
        resume: "Web/Resume %n nodes: %1",
        stop: "Web/Stop %n nodes: %1",
    },
};

export function confirmationText(plan: ActionPlan): string {
    const list = plan.ids.map(plan.describe).join(", ");
    if (plan.action === "priority") {
        const key = plan.target === "batches" ? "Web/Priority %1 for %n batches: %2" : "Web/Priority %1 for %n nodes: %2";
        return trn(key, plan.ids.length, priorityWord(plan.priority ?? 0), list);
    }
    return trn(ConfirmTexts[plan.target][plan.action] ?? "", plan.ids.length, list);
}

function resultText(result: ActionResults["results"][number]): string {
    switch (result.result) {
    case "accepted":
        return tr("Web/Accepted");
    case "refused":
        return tr("Web/Refused: %1", result.reason ?? "");
    case "timed out":
        return tr("Web/No answer in time: %1", result.reason ?? "");
    default:
        return tr("Web/Server unreachable: %1", result.reason ?? "");
    }
}

function errorText(error: unknown): string {
    if (error instanceof ApiError && error.problem.status === 403)
        return tr("Web/Not allowed: %1", error.problem.detail ?? error.problem.title);
    if (error instanceof ApiError)
        return tr("Web/Refused: %1", error.problem.detail ?? error.problem.title);
    return tr("Web/Server unreachable: %1", String(error));
}

// One action on several rows, or a destructive one: asked first.
export function needsConfirmation(plan: ActionPlan): boolean {
    return plan.ids.length > 1 || plan.action === "abort" || plan.action === "stop";
}

function button(text: string, className: string): HTMLButtonElement {
    const element = document.createElement("button");
    element.type = "button";
    element.className = className;
    element.textContent = text;
    return element;
}

// The dialog: the targets, then, once confirmed, each row's result.
export function confirmAndAct(plan: ActionPlan, done: () => void): void {
    const dialog = document.createElement("dialog");
    dialog.className = "confirm";
    const text = document.createElement("p");
    text.id = "confirm-text";
    text.textContent = confirmationText(plan);
    dialog.setAttribute("aria-labelledby", text.id);
    const buttons = document.createElement("div");
    buttons.className = "dialog-buttons";
    const confirm = button(tr("Web/Confirm"), "primary");
    const cancel = button(tr("Web/Cancel"), "");
    buttons.append(confirm, cancel);
    dialog.append(text, buttons);
    const back = document.activeElement instanceof HTMLElement ? document.activeElement : null;
    const close = () => {
        dialog.close();
        dialog.remove();
        back?.focus({ preventScroll: true });
        done();
    };
    cancel.addEventListener("click", close);
    dialog.addEventListener("cancel", (event) => {
        event.preventDefault();
        close();
    });
    confirm.addEventListener("click", () => {
        confirm.disabled = true;
        cancel.disabled = true;
        void run(plan).then((lines) => {
            const heading = document.createElement("h2");
            heading.textContent = tr("Web/Results");
            const list = document.createElement("ul");
            list.className = "results";
            for (const line of lines) {
                const item = document.createElement("li");
                item.textContent = line;
                list.append(item);
            }
            const closeButton = button(tr("Web/Close"), "primary");
            closeButton.addEventListener("click", close);
            buttons.replaceChildren(closeButton);
            dialog.insertBefore(heading, buttons);
            dialog.insertBefore(list, buttons);
            closeButton.focus();
        });
    });
    document.body.append(dialog);
    dialog.showModal();
    confirm.focus();
}

// Sends the action; one line per row: "#3 castle.kproj: Accepted".
export async function run(plan: ActionPlan): Promise<string[]> {
    try {
        const answer = await act(plan.target, plan.action, plan.ids, plan.priority);
        return answer.results.map((result) => `${plan.describe(result.id)}: ${resultText(result)}`);
    } catch (error) {
        const text = errorText(error);
        return plan.ids.map((id) => `${plan.describe(id)}: ${text}`);
    }
}
