// What is told in words: about the dump, about one entry, and lists of entries.
class Panel {
    static longestList = 500;

    constructor(trace, onChoice) {
        this.trace = trace;
        this.onChoice = onChoice;
        this.#showDump();
        this.#showList("errors", trace.errors, "No errors.");
        this.showSelected(null);
    }

    #showDump() {
        const { source, records, begin, end, findings } = this.trace.about;
        document.title = `${source} – timeline`;
        Panel.#find("h1").textContent = source;
        const shown = this.trace.countRecords();
        const all = `${records.toLocaleString("en")} ${records === 1 ? "record" : "records"}`;
        const facts = [shown < records ? `${shown.toLocaleString("en")} of ${all}` : all,
            TimeScale.duration(end - begin)];
        if (this.trace.wallClockAt(begin))
            facts.push(`${this.trace.wallClockAt(begin)} to ${this.trace.wallClockAt(end)}`);
        Panel.#find("#facts").textContent = facts.join(" · ");
        Panel.#find("#findings").hidden = findings.length === 0;
        Panel.#find("#findings ul").replaceChildren(...findings.map((text) => Panel.#make("li", text)));
    }

    showSelected(entry) {
        const told = entry ? this.#tell(entry) : [Panel.#make("p", "Click what happened in the timeline.")];
        Panel.#find("#selected div").replaceChildren(...told);
    }

    showFound(entries, isLookedFor) {
        Panel.#find("#found").hidden = !isLookedFor;
        Panel.#find("#found h2").textContent = `Found ${entries.length.toLocaleString("en")}`;
        this.#showList("found", entries, "Nothing of that.");
    }

    showHint(entry, x, y) {
        const hint = Panel.#find("#hint");
        hint.hidden = !entry;
        if (!entry)
            return;
        hint.replaceChildren(...this.#tell(entry));
        hint.style.left = `${Math.max(0, Math.min(x + 14, innerWidth - hint.offsetWidth - 8))}px`;
        hint.style.top = `${Math.max(0, Math.min(y + 16, innerHeight - hint.offsetHeight - 8))}px`;
    }

    #showList(id, entries, none) {
        const items = entries.slice(0, Panel.longestList).map((entry) => this.#item(entry));
        if (entries.length > items.length)
            items.push(Panel.#make("small", `and ${entries.length - items.length} more`));
        if (entries.length === 0)
            items.push(Panel.#make("small", none));
        Panel.#find(`#${id} ol`).replaceChildren(...items);
    }

    #item(entry) {
        const place = entry.isScope ? [] : [entry.args.place];
        const details = [this.trace.seconds(entry.begin), ...place, `on ${entry.lane.name}`];
        const button = Panel.#make("button");
        button.append(Panel.#make("b", entry.name), Panel.#make("small", details.filter(Boolean).join(" ")));
        button.onclick = () => this.onChoice(entry);
        const item = Panel.#make("li");
        item.append(button);
        return item;
    }

    #tell(entry) {
        const list = Panel.#make("dl");
        for (const [term, text] of this.#facts(entry)) {
            if (text)
                list.append(Panel.#make("dt", term), Panel.#make("dd", text));
        }
        return [Panel.#make("b", entry.name), list];
    }

    #facts({ begin, end, isScope, lane, args }) {
        const lost = [args.lostBegin && "entered before the dump", args.lostEnd && "not left"];
        return [
            ["Place", args.place],
            ["Thread", `${lane.name} (${lane.id})`],
            ["Time", this.trace.seconds(begin)],
            ["Wall clock", this.trace.wallClockAt(begin)],
            ["Took", isScope && TimeScale.duration(end - begin)],
            ["Lost", lost.filter(Boolean).join(", ")],
            ["Object", [args.objectName, args.object].filter(Boolean).join(", ")],
            ["Line", args.line],
            ["Parameters", args.param1 !== undefined && `${args.param1}, ${args.param2}`],
        ];
    }

    static #find(selector) {
        return document.querySelector(selector);
    }

    static #make(tag, text = "") {
        const element = document.createElement(tag);
        element.textContent = text;
        return element;
    }
}
