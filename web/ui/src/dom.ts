// Small helpers for building the page without a framework.

export function element<K extends keyof HTMLElementTagNameMap>(
    tag: K, attributes: Record<string, string> = {}, text?: string): HTMLElementTagNameMap[K] {
    const node = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes))
        node.setAttribute(name, value);
    if (text !== undefined)
        node.textContent = text;
    return node;
}

// Writes the text only when it differs, so an unchanged page costs no layout.
export function setText(node: Node, text: string): void {
    if (node.textContent !== text)
        node.textContent = text;
}

export function setHidden(node: HTMLElement, hidden: boolean): void {
    if (node.hidden !== hidden)
        node.hidden = hidden;
}
