// The names of the lanes, which stay in view, with what can be done with a lane.
class LaneHeads {
    constructor(lanes, onChange) {
        this.lanes = lanes;
        this.onChange = onChange;
        this.heads = new Map(lanes.trace.lanes.map((lane) => [lane, this.#makeHead(lane)]));
        this.place();
    }

    place() {
        element("#lanes").style.height = `${this.lanes.height}px`;
        element("#lanes").replaceChildren(...this.lanes.loose.map((lane) => this.#placeHead(lane)));
        element("#pinned").replaceChildren(...this.lanes.pinned.map((lane) => this.#placeHead(lane)));
        element("main").style.setProperty("--pinned", `${this.lanes.pinnedHeight}px`);
    }

    // Names do not show through the pinned lanes.
    clip(scrolled) {
        element("#lanes").style.clipPath = `inset(${scrolled + this.lanes.pinnedHeight}px 0 0)`;
    }

    #placeHead(lane) {
        const head = this.heads.get(lane);
        const [fold, pin, up, down] = head.querySelectorAll("button");
        head.style.top = `${lane.top + 1}px`;
        head.style.height = `${lane.height - 1}px`;
        fold.textContent = lane.isCollapsed ? "▸" : "▾";
        fold.setAttribute("aria-expanded", !lane.isCollapsed);
        pin.setAttribute("aria-pressed", lane.isPinned);
        up.hidden = lane.base === 0;
        up.textContent = `▴ ${lane.base} above`;
        down.hidden = lane.isCollapsed || lane.rowsBelow === 0;
        down.textContent = `▾ ${lane.rowsBelow} deeper`;
        return head;
    }

    #makeHead(lane) {
        const head = make("div", "", { className: "lane" });
        const name = make("div", "", { className: "name" });
        const change = (label, action) => {
            const button = make("button", "", { title: label, ariaLabel: `${label}: ${lane.name}` });
            button.onclick = () => this.#change(button, lane, action);
            return button;
        };
        const pin = change("Keep in view", () => lane.isPinned = !lane.isPinned);
        pin.textContent = "⤒";
        name.append(
            change("Show the depths of the thread", () => lane.isCollapsed = !lane.isCollapsed),
            make("span", lane.name), make("small", lane.id ?? ""), pin,
            change("To what lies above", () => lane.base = Math.max(0, lane.base - Lane.mostRows)),
            change("To what lies deeper", () => lane.base += Math.min(Lane.mostRows, lane.rowsBelow)));
        head.append(name);
        return head;
    }

    #change(button, lane, action) {
        action(lane);
        this.onChange();
        button.focus();
    }
}
