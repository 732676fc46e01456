// Server-Sent Events read from a byte stream, as the HTML standard parses
// them: fields up to each empty line, comments kept apart so a quiet but
// healthy stream (the server's heartbeat) can be told from a dead one.

export interface ServerEvent {
    type: string;
    id: string | null;
    data: string;
}

export class SseParser {
    // The start of a line whose end has not come yet: a snapshot's line
    // arrives in dozens of pieces, joined once at its end.
    private pieces: string[] = [];
    // The last piece ended in CR: a LF first in the next belongs to it.
    private afterCr = false;
    // Searched natively: a loop over the characters in script cost
    // milliseconds for each delta.
    private readonly lineBreak = /[\r\n]/g;
    private type = "";
    private data: string[] = [];
    private id: string | null = null;

    constructor(
        private readonly onEvent: (event: ServerEvent) => void,
        private readonly onComment: () => void,
    ) {}

    push(text: string): void {
        let start = this.afterCr && text.charCodeAt(0) === 10 ? 1 : 0;
        this.afterCr = false;
        for (;;) {
            this.lineBreak.lastIndex = start;
            const found = this.lineBreak.exec(text);
            if (!found)
                break;
            const end = found.index;
            this.pieces.push(text.slice(start, end));
            const line = this.pieces.length === 1 ? this.pieces[0]! : this.pieces.join("");
            this.pieces = [];
            start = end + 1;
            if (found[0] === "\r") {
                if (start === text.length)
                    this.afterCr = true;
                else if (text.charCodeAt(start) === 10)
                    start += 1;
            }
            this.line(line);
        }
        if (start < text.length)
            this.pieces.push(text.slice(start));
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
