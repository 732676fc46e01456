// Server-Sent Events read from a byte stream, as the HTML standard parses
// them: fields up to each empty line, comments kept apart so a quiet but
// healthy stream (the server's heartbeat) can be told from a dead one.

export interface ServerEvent {
    type: string;
    id: string | null;
    data: string;
}

export class SseParser {
    private buffer = "";
    private type = "";
    private data: string[] = [];
    private id: string | null = null;

    constructor(
        private readonly onEvent: (event: ServerEvent) => void,
        private readonly onComment: () => void,
    ) {}

    push(text: string): void {
        this.buffer += text;
        let start = 0;
        for (;;) {
            const end = this.lineEnd(start);
            if (end < 0)
                break;
            this.line(this.buffer.slice(start, end));
            start = end + (this.buffer[end] === "\r" && this.buffer[end + 1] === "\n" ? 2 : 1);
        }
        this.buffer = this.buffer.slice(start);
    }

    private lineEnd(from: number): number {
        for (let i = from; i < this.buffer.length; ++i) {
            const c = this.buffer.charCodeAt(i);
            if (c === 10)
                return i;
            // A lone CR ends a line too, but only once the next character shows it is not CRLF.
            if (c === 13)
                return i + 1 < this.buffer.length ? i : -1;
        }
        return -1;
    }

    private line(line: string): void {
        if (line === "") {
            if (this.data.length > 0)
                this.onEvent({ type: this.type || "message", id: this.id, data: this.data.join("\n") });
            this.type = "";
            this.data = [];
            return;
        }
        if (line.startsWith(":")) {
            this.onComment();
            return;
        }
        const colon = line.indexOf(":");
        const field = colon < 0 ? line : line.slice(0, colon);
        let value = colon < 0 ? "" : line.slice(colon + 1);
        if (value.startsWith(" "))
            value = value.slice(1);
        if (field === "event")
            this.type = value;
        else if (field === "data")
            this.data.push(value);
        else if (field === "id" && !value.includes("\0"))
            this.id = value;
    }
}
