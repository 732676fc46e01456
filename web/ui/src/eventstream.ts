// The page's one event stream, read with fetch so that it can send
// Last-Event-ID itself, notice a stream that has gone quiet, and choose
// its own back-off. After a break it resumes where it stopped: the server
// sends what was missed, or a snapshot when that is too old.
import { SseParser, type ServerEvent } from "./sseparser";

export interface StreamListener {
    event(event: ServerEvent): void;
    // The stream is up (its first event arrived) or down.
    link(up: boolean): void;
}

// Waits between attempts, as the server's own reconnecting does.
const BackoffSeconds = [1, 2, 4, 8, 16];

export class EventStream {
    private lastEventId: string | null = null;
    private batch: number | null = null;
    private controller: AbortController | null = null;
    private quietTimer = 0;
    private quietLimit = 8000;
    private attempts = 0;
    private running = false;
    private up = false;
    private generation = 0;

    constructor(private readonly listener: StreamListener) {}

    // The batch whose status the stream is to carry too, or null.
    follow(batch: number | null): void {
        if (this.running && batch === this.batch)
            return;
        this.batch = batch;
        this.restart();
    }

    // How long the stream may be silent before it counts as broken.
    setQuietLimit(milliseconds: number): void {
        this.quietLimit = milliseconds;
        this.armQuietTimer();
    }

    // Ends the stream now and opens it again, as a break would.
    restart(): void {
        this.running = true;
        this.controller?.abort();
        const generation = ++this.generation;
        void this.run(generation);
    }

    private armQuietTimer(): void {
        self.clearTimeout(this.quietTimer);
        if (this.running)
            this.quietTimer = self.setTimeout(() => this.controller?.abort(), this.quietLimit);
    }

    private setUp(up: boolean): void {
        if (up === this.up)
            return;
        this.up = up;
        this.listener.link(up);
    }

    private async run(generation: number): Promise<void> {
        while (generation === this.generation) {
            const controller = new AbortController();
            this.controller = controller;
            try {
                await this.readOnce(controller, generation);
            } catch {
                // a refused, broken or quiet stream: counted below
            }
            self.clearTimeout(this.quietTimer);
            if (generation !== this.generation)
                return;
            this.setUp(false);
            const wait = BackoffSeconds[Math.min(this.attempts, BackoffSeconds.length - 1)] as number;
            this.attempts += 1;
            await new Promise((resolve) => self.setTimeout(resolve, wait * 1000));
        }
    }

    private async readOnce(controller: AbortController, generation: number): Promise<void> {
        const headers: Record<string, string> = { Accept: "text/event-stream" };
        if (this.lastEventId !== null)
            headers["Last-Event-ID"] = this.lastEventId;
        const url = this.batch === null ? "/api/v1/events" : `/api/v1/events?batch=${this.batch}`;
        this.armQuietTimer();
        const response = await fetch(url, { headers, signal: controller.signal, cache: "no-store" });
        if (!response.ok || !response.body)
            throw new Error(`HTTP ${response.status}`);
        const parser = new SseParser(
            (event) => {
                if (generation !== this.generation)
                    return;
                this.armQuietTimer();
                if (event.id !== null)
                    this.lastEventId = event.id;
                this.attempts = 0;
                this.setUp(true);
                this.listener.event(event);
            },
            () => this.armQuietTimer(),
        );
        const reader = response.body.pipeThrough(new TextDecoderStream()).getReader();
        for (;;) {
            const { value, done } = await reader.read();
            if (done)
                return;
            parser.push(value);
        }
    }
}
