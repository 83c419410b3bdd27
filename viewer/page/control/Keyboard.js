// What the keys do, wherever the focus is but in what takes text or has keys of its own.
class Keyboard {
    constructor(timeline) {
        this.timeline = timeline;
        this.help = document.getElementById("help");
        const { scale } = timeline;
        this.actions = {
            a: () => scale.move(-1 / 8),
            d: () => scale.move(1 / 8),
            w: () => scale.zoom(1 / 1.5),
            s: () => scale.zoom(1.5),
            ArrowLeft: () => this.#walk((entry) => Keyboard.#beside(entry, -1)),
            ArrowRight: () => this.#walk((entry) => Keyboard.#beside(entry, 1)),
            ArrowUp: () => this.#walk(({ around }) => around),
            ArrowDown: () => this.#walk((entry) => Keyboard.#inside(entry)),
            Enter: () => timeline.goToFound(1),
            e: () => timeline.goToError(1),
            E: () => timeline.goToError(-1),
            f: () => timeline.fit(),
            g: () => timeline.toggleFlames(),
            r: () => timeline.spanSelected(),
            "/": () => timeline.search.focus(),
            "?": () => this.help.showModal(),
        };
        document.onkeydown = (event) => this.#obey(event);
    }

    #obey(event) {
        const { timeline } = this;
        if (this.help.open || event.ctrlKey || event.altKey || event.metaKey)
            return;
        if (event.key === "Escape")
            timeline.letGo();
        if (event.target === timeline.search) {
            if (event.key === "Enter")
                timeline.goToFound(event.shiftKey ? -1 : 1);
            return;
        }
        const isPressed = event.key === "Enter" && event.target !== timeline.plot && event.target !== document.body;
        if (isPressed || event.target.matches("select") || !Object.hasOwn(this.actions, event.key))
            return;
        event.preventDefault();
        this.actions[event.key]();
        timeline.redraw();
    }

    // From the selected entry to another; from nothing to the first in view.
    #walk(step) {
        const { timeline } = this;
        const { selected } = timeline.painter;
        const next = selected ? step(selected) : Keyboard.#first(timeline);
        if (next)
            timeline.reveal(next);
    }

    static #first({ lanes, scale }) {
        const inView = lanes.trace.threads
            .map(({ rows: [row] }) => row?.scopes[firstEndingFrom(row.scopes, scale.from)]);
        return inView.find(Boolean) ?? null;
    }

    static #rowOf({ lane, depth, isScope, isError }) {
        const row = lane.rows[depth];
        return isScope ? row.scopes : isError ? row.errors : row.marks;
    }

    static #beside(entry, step) {
        const row = Keyboard.#rowOf(entry);
        return row[row.indexOf(entry) + step];
    }

    // The first scope in a scope, or else the first event.
    static #inside({ lane, depth, begin, end, isScope }) {
        const firstIn = (entries = []) => {
            const entry = entries[firstEndingFrom(entries, begin)];
            return entry && entry.begin <= end ? entry : null;
        };
        const { errors, marks } = lane.rows[depth];
        return isScope ? firstIn(lane.rows[depth + 1]?.scopes) ?? firstIn(errors) ?? firstIn(marks) : null;
    }
}
