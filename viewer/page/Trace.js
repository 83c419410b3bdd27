// What happened, as trace events tell it, arranged for drawing: lanes, and in each its rows by depth.
class Trace {
    static deepestRow = 63; // what lies deeper is listed and found, and not drawn

    constructor({ otherData, traceEvents }) {
        this.about = otherData;
        this.begin = otherData.begin;
        this.end = otherData.end;
        this.lanes = [];
        this.entries = [];
        for (const event of traceEvents) {
            if (event.ph === "M")
                this.#addLane(event);
            else
                this.#addEntry(event, this.lanes.at(-1));
        }
        this.errors = this.entries.filter((entry) => entry.isError);
        this.errors.sort((one, other) => one.begin - other.begin);
    }

    #addLane({ tid, args }) {
        this.lanes.push({ id: tid, name: args.name, rows: [], open: [] });
    }

    // Events stand in the row of the scope around them.
    #addEntry({ name, ph, cat, ts, dur = 0, args }, lane) {
        const isScope = ph === "X";
        const around = lane.open[args.depth - 1];
        const depth = isScope ? args.depth : Math.max(0, args.depth - 1);
        const isError = cat === "error";
        const entry = { name, cat, isScope, isError, begin: ts, end: ts + dur, args, lane, depth, around };
        this.entries.push(entry);
        if (isScope)
            lane.open[depth] = entry;
        if (depth > Trace.deepestRow)
            return;
        while (lane.rows.length <= depth)
            lane.rows.push({ scopes: [], marks: [] });
        lane.rows[depth][isScope ? "scopes" : "marks"].push(entry);
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

    // How many records of the dump are here, where a filter may have left some out.
    countRecords() {
        const recordsOf = ({ isScope, args }) => (isScope && !args.lostBegin && !args.lostEnd ? 2 : 1);
        return this.entries.reduce((sum, entry) => sum + recordsOf(entry), 0);
    }

    // Seconds, as the dump has them.
    seconds(time) {
        return `${((time + this.about.origin) / 1e6).toFixed(6)} s`;
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

// The first of entries in order of time that ends at or after it. Entries must not overlap.
function firstEndingFrom(entries, time) {
    let low = 0;
    let high = entries.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (entries[middle].end < time)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}
