// The page's end of the stream worker: tells it which list is in sight and
// which batch to follow, and hands on what it sends.
import type { FromFeed, Sight, ToFeed } from "./feedmessages";

export class FarmFeed {
    private readonly worker: Worker;
    private quietLimit = 0;

    constructor(script: string, listener: (message: FromFeed) => void) {
        this.worker = new Worker(script);
        this.worker.addEventListener("message", (event: MessageEvent<FromFeed>) => listener(event.data));
    }

    // The list in sight, and the batch whose status to follow (or null).
    show(sight: Sight, batch: number | null): void {
        this.send({ kind: "view", sight, batch });
    }

    // How long the stream may be silent before it counts as broken.
    setQuietLimit(milliseconds: number): void {
        if (milliseconds === this.quietLimit)
            return;
        this.quietLimit = milliseconds;
        this.send({ kind: "quietLimit", milliseconds });
    }

    private send(message: ToFeed): void {
        this.worker.postMessage(message);
    }
}
