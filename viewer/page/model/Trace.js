// What happened, as trace events tell it: a lane for each thread, the states of objects, errors, flows.
class Trace {
    constructor({ otherData, traceEvents }) {
        this.about = otherData;
        this.begin = otherData.begin;
        this.end = otherData.end;
        this.threads = [];
        this.entries = [];
        this.errors = [];
        this.scopeNames = new Set();
        this.records = 0; // of the dump that are here; a filter may have left some out
        this.flows = new Flows();
        const changes = [];
        for (const event of traceEvents)
            this.#add(event, changes);
        this.objects = this.#layOutStates(changes);
        this.lanes = this.objects.rows.length > 0 ? [...this.threads, this.objects] : this.threads;
        this.#sortErrors();
        this.flows.bind(this.threads);
    }

    #add(event, changes) {
        switch (event.ph) {
        case "M":
            this.threads.push(new Lane(event.args.name, event.tid, Trace.laneKey(event)));
            break;
        case "s":
        case "f":
            this.flows.add(event);
            break;
        default:
            this.#addEntry(new Entry(event, this.threads.at(-1)), changes);
        }
    }

    // Dumps that were merged may have threads of one id.
    static laneKey({ pid, tid }) {
        return `${pid} ${tid}`;
    }

    #addEntry(entry, changes) {
        const { cat, args } = entry;
        this.entries.push(entry);
        entry.lane.add(entry);
        this.records += cat === "scope" && !args.lostBegin && !args.lostEnd ? 2 : 1;
        if (cat === "scope")
            this.scopeNames.add(entry.name);
        else if (cat === "state")
            changes.push(entry);
        else if (cat === "error")
            this.errors.push(entry);
    }

    #layOutStates(changes) {
        const lane = new Lane("States of objects", null);
        const rows = new Map();
        for (const change of changes.sort((one, other) => one.begin - other.begin)) {
            const { object } = change.args;
            if (!rows.has(object))
                rows.set(object, { depth: rows.size, bands: lane.addRow().scopes });
            const { depth, bands } = rows.get(object);
            if (bands.length > 0)
                bands.at(-1).end = change.begin;
            bands.push(new Band(change, lane, depth, this.end));
        }
        return lane;
    }

    // A dismissed error stands with what dismissed it.
    #sortErrors() {
        this.errors.sort((one, other) => one.begin - other.begin);
        const raised = new Map();
        for (const error of this.errors) {
            if (error.args.dismissed !== undefined)
                raised.set(`${error.lane.key} ${error.begin} ${error.args.dismissed}`, error);
        }
        for (const error of this.errors) {
            const key = `${error.lane.key} ${error.args.dismisses} ${error.begin}`;
            const root = raised.get(key);
            if (root) {
                root.dismissal = error;
                error.root = root;
            }
        }
    }

    // Entries whose text holds all the words; none for no words.
    find(text) {
        const words = text.toLowerCase().split(/\s+/).filter(Boolean);
        if (words.length === 0)
            return [];
        return this.entries.filter(({ name, args, lane }) => {
            const texts = [name, args.place, args.objectName, args.object, lane.name];
            const all = texts.filter(Boolean).join(" ").toLowerCase();
            return words.every((word) => all.includes(word));
        });
    }

    // A point of time, as the dump has it.
    seconds(time) {
        return TimeScale.seconds(time + this.about.origin);
    }

    // The local time of the machine that wrote the dump, or null.
    wallClockAt(time) {
        const start = Date.parse(this.about.wallClock.replace(" ", "T") + "Z");
        if (Number.isNaN(start))
            return null;
        const moment = new Date(Math.floor(start + (time - this.about.start) / 1000));
        return moment.toISOString().replace("T", " ").slice(0, -1);
    }
}
