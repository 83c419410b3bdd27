// A scope, or a single event. Events stand in the row of the scope around them.
class Entry {
    constructor({ name, cat, ts, dur = 0, args }, lane) {
        this.name = name;
        this.cat = cat;
        this.begin = ts;
        this.end = ts + dur;
        this.args = args;
        this.lane = lane;
        this.depth = cat === "scope" ? args.depth : Math.max(0, args.depth - 1);
        this.around = args.depth > 0 ? lane.open[args.depth - 1] ?? null : null;
    }

    get isScope() {
        return this.cat === "scope";
    }

    // What its colour goes by.
    get look() {
        return this.name;
    }

    get isError() {
        return this.cat === "error";
    }

    // Whether it is an error that was dismissed, or dismisses one; the two know each other.
    get isDismissed() {
        return this.dismissal !== undefined || this.name === "Dismissed_error";
    }
}

// A state of an object, from the change to it until the next; one row shows all of an object.
class Band {
    constructor(change, lane, depth, end) {
        this.change = change;
        this.begin = change.begin;
        this.lane = lane;
        this.depth = depth;
        this.end = end;
    }

    get name() {
        const { object, objectName, state } = this.change.args;
        return `${objectName ?? object}: ${state}`;
    }

    get look() {
        return this.change.args.state;
    }

    get isScope() {
        return true;
    }

    get isError() {
        return false;
    }

    get around() {
        return null;
    }

    get args() {
        return this.change.args;
    }
}
