// What is told in words: about the dump, about one entry, and lists of entries.
class Panel {
    static longestList = 500;

    constructor(trace, onChoice) {
        this.trace = trace;
        this.onChoice = onChoice;
        this.#showDump();
        this.showErrors(trace.errors);
        this.showSelected(null);
    }

    #showDump() {
        const { source, records, begin, end, findings } = this.trace.about;
        document.title = `${source} – timeline`;
        element("h1").textContent = source;
        const shown = this.trace.records;
        const all = `${records.toLocaleString("en")} ${records === 1 ? "record" : "records"}`;
        const facts = [shown < records ? `${shown.toLocaleString("en")} of ${all}` : all,
            TimeScale.seconds(end - begin)];
        if (this.trace.wallClockAt(begin))
            facts.push(`${this.trace.wallClockAt(begin)} to ${this.trace.wallClockAt(end)}`);
        element("#facts").textContent = facts.join(" · ");
        element("#findings").hidden = findings.length === 0;
        element("#findings ul").replaceChildren(...findings.map((text) => make("li", text)));
    }

    showSelected(entry) {
        const told = entry ? [...this.#tell(entry), ...this.#links(entry)] :
            [make("p", "Click what happened in the timeline.")];
        element("#selected div").replaceChildren(...told);
    }

    showFound(entries, isLookedFor) {
        element("#found").hidden = !isLookedFor;
        element("#found h2").textContent = `Found ${entries.length.toLocaleString("en")}`;
        this.#showList("found", entries, "Nothing of that.");
    }

    // What dismissed an error stands below it.
    showErrors(errors) {
        this.#showList("errors", errors.filter(({ root }) => !root || !errors.includes(root)), "No errors.");
        element("#dismissed-count").textContent =
            this.trace.errors.filter(({ dismissal }) => dismissal).length.toLocaleString("en");
    }

    showHint(entry, x, y) {
        const hint = element("#hint");
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
            items.push(make("small", `and ${entries.length - items.length} more`));
        if (entries.length === 0)
            items.push(make("small", none));
        element(`#${id} ol`).replaceChildren(...items);
    }

    #item(entry) {
        const item = make("li");
        item.append(this.#button(entry));
        if (entry.dismissal)
            item.append(this.#button(entry.dismissal, "dismissed"));
        return item;
    }

    #button(entry, className = "") {
        const place = entry.isScope ? [] : [entry.args.place];
        const details = [this.trace.seconds(entry.begin), ...place, `on ${entry.lane.name}`];
        const button = make("button", "", { className, onclick: () => this.onChoice(entry) });
        button.append(make("b", entry.name), make("small", details.filter(Boolean).join(" ")));
        return button;
    }

    #tell(entry) {
        const list = make("dl");
        for (const [term, text] of this.#facts(entry)) {
            if (text)
                list.append(make("dt", term), make("dd", text));
        }
        return [make("b", entry.name), list];
    }

    #facts({ begin, end, isScope, lane, args }) {
        const lost = [args.lostBegin && "entered before the dump", args.lostEnd && "not left"];
        return [
            ["Place", args.place],
            ["Thread", lane.id !== null && `${lane.name} (${lane.id})`],
            ["Time", this.trace.seconds(begin)],
            ["Wall clock", this.trace.wallClockAt(begin)],
            ["Took", isScope && TimeScale.seconds(end - begin)],
            ["Lost", lost.filter(Boolean).join(", ")],
            ["Object", [args.objectName, args.object].filter(Boolean).join(", ")],
            ["Line", args.line],
            ["Parameters", args.param1 !== undefined && `${args.param1}, ${args.param2}`],
        ];
    }

    // To what belongs to an entry and lies elsewhere.
    #links(entry) {
        const flows = this.trace.flows.of(entry).map((flow) => {
            const isCaller = flow.from.scope === entry;
            const text = `${isCaller ? "→" : "←"} ${flow.name}, waited ${TimeScale.seconds(Flows.wait(flow))}`;
            return [text, isCaller ? flow.to.scope : flow.from.scope];
        });
        const errors = [["→ dismissed", entry.dismissal], ["← raised", entry.root]].filter(([, other]) => other);
        return [...flows, ...errors].slice(0, Panel.longestList).map(([text, other]) => {
            const button = make("button", "", { className: "link", onclick: () => this.onChoice(other) });
            button.append(make("span", text), make("small", other.name));
            return button;
        });
    }
}
