// The API's requests other than the event stream.
import type { ActionResults, ActionWord, BatchStatus, Problem, WhoAmI } from "./types";

export type Target = "batches" | "nodes";

export class ApiError extends Error {
    constructor(readonly problem: Problem) {
        super(problem.detail ?? problem.title);
    }
}

async function json<T>(response: Response): Promise<T> {
    const body: unknown = await response.json();
    if (!response.ok)
        throw new ApiError(body as Problem);
    return body as T;
}

export async function whoAmI(): Promise<WhoAmI> {
    return json<WhoAmI>(await fetch("/api/v1/whoami", { cache: "no-store" }));
}

export async function batchStatus(id: number): Promise<BatchStatus> {
    return json<BatchStatus>(await fetch(`/api/v1/batches/${id}`, { cache: "no-store" }));
}

// One action on several rows; the server answers for each id.
export async function act(target: Target, action: ActionWord, ids: number[], priority?: number): Promise<ActionResults> {
    const body: { ids: number[]; priority?: number } = { ids };
    if (priority !== undefined)
        body.priority = priority;
    const response = await fetch(`/api/v1/${target}/${action}`, {
        method: "POST",
        headers: { "Content-Type": "application/json" },
        body: JSON.stringify(body),
    });
    return json<ActionResults>(response);
}
