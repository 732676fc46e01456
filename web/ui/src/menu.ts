// A row's actions as a WAI-ARIA menu at the pointer or the focused cell:
// arrows and Home/End move, Enter or Space chooses, Escape or a click
// elsewhere closes, and the focus goes back where it came from.

export interface MenuItem {
    label: string;
    run?: () => void;
    // A heading over the items that follow (a group of priorities).
    group?: string;
}

let open: { element: HTMLElement; back: HTMLElement | null; cleanup: () => void } | null = null;

export function closeMenu(): void {
    if (!open)
        return;
    const { element, back, cleanup } = open;
    open = null;
    cleanup();
    element.remove();
    back?.focus({ preventScroll: true });
}

export function showMenu(label: string, items: MenuItem[], at: { x: number; y: number }): void {
    closeMenu();
    const back = document.activeElement instanceof HTMLElement ? document.activeElement : null;
    const menu = document.createElement("div");
    menu.className = "menu";
    menu.setAttribute("role", "menu");
    menu.setAttribute("aria-label", label);
    const buttons: HTMLElement[] = [];
    let group: HTMLElement = menu;
    for (const item of items) {
        if (item.group !== undefined) {
            group = document.createElement("div");
            group.setAttribute("role", "group");
            group.setAttribute("aria-label", item.group);
            const heading = document.createElement("div");
            heading.className = "menu-group";
            heading.setAttribute("aria-hidden", "true");
            heading.textContent = item.group;
            group.append(heading);
            menu.append(group);
            continue;
        }
        const entry = document.createElement("div");
        entry.className = "menu-item";
        entry.setAttribute("role", "menuitem");
        entry.tabIndex = -1;
        entry.textContent = item.label;
        const run = item.run;
        entry.addEventListener("click", () => {
            closeMenu();
            run?.();
        });
        group.append(entry);
        buttons.push(entry);
    }
    const move = (index: number) => buttons[(index + buttons.length) % buttons.length]?.focus();
    menu.addEventListener("keydown", (event) => {
        const index = buttons.indexOf(document.activeElement as HTMLElement);
        let handled = true;
        switch (event.key) {
        case "ArrowDown":
            move(index + 1);
            break;
        case "ArrowUp":
            move(index - 1);
            break;
        case "Home":
            move(0);
            break;
        case "End":
            move(buttons.length - 1);
            break;
        case "Enter":
        case " ":
            (document.activeElement as HTMLElement | null)?.click();
            break;
        case "Escape":
        case "Tab":
            closeMenu();
            break;
        default:
            handled = false;
        }
        if (handled) {
            event.preventDefault();
            event.stopPropagation();
        }
    });
    (document.querySelector("main") ?? document.body).append(menu);
    // Kept inside the window, also on a narrow screen.
    const rect = menu.getBoundingClientRect();
    menu.style.left = `${Math.max(4, Math.min(at.x, window.innerWidth - rect.width - 4))}px`;
    menu.style.top = `${Math.max(4, Math.min(at.y, window.innerHeight - rect.height - 4))}px`;
    const outside = (event: Event) => {
        if (!menu.contains(event.target as Node))
            closeMenu();
    };
    window.setTimeout(() => document.addEventListener("pointerdown", outside, true));
    window.addEventListener("blur", closeMenu);
    open = {
        element: menu,
        back,
        cleanup: () => {
            document.removeEventListener("pointerdown", outside, true);
            window.removeEventListener("blur", closeMenu);
        },
    };
    move(0);
}
