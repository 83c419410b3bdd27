// What happened at one depth. Scopes do not overlap; all three are in order of time.
class Row {
    scopes = [];
    marks = [];
    errors = [];

    add(entry) {
        (entry.isScope ? this.scopes : entry.isError ? this.errors : this.marks).push(entry);
    }

    // The same row with nothing but what passes.
    filter(passes) {
        return Object.assign(new Row(), {
            scopes: this.scopes.filter(passes), marks: this.marks.filter(passes), errors: this.errors.filter(passes),
        });
    }
}

// What happened on one thread, in rows by depth, and how its user wants to see it.
class Lane {
    static mostRows = 64; // shown at once
    static headHeight = 24; // room for the name
    static rowHeight = 20;
    static gap = 10;

    rows = [];
    open = []; // the latest scope of each depth
    top = 0;
    base = 0; // depth of the first row that is shown
    isCollapsed = false;
    isPinned = false;

    constructor(name, id, key = null) {
        this.name = name;
        this.id = id;
        this.key = key;
    }

    addRow() {
        this.rows.push(new Row());
        return this.rows.at(-1);
    }

    add(entry) {
        while (this.rows.length <= entry.depth)
            this.addRow();
        this.rows[entry.depth].add(entry);
        if (entry.isScope)
            this.open[entry.depth] = entry;
    }

    get rowsShown() {
        return this.rows.slice(this.base, this.base + (this.isCollapsed ? 1 : Lane.mostRows));
    }

    get rowsBelow() {
        return Math.max(0, this.rows.length - this.base - Lane.mostRows);
    }

    get height() {
        return Lane.headHeight + Math.max(1, this.rowsShown.length) * Lane.rowHeight + Lane.gap;
    }

    get begin() {
        return Math.min(...this.rows.slice(0, 1).flatMap(({ scopes, marks, errors }) =>
            [scopes, marks, errors].filter((entries) => entries.length > 0).map(([{ begin }]) => begin)));
    }

    get activity() {
        return this.rows.reduce((sum, { scopes, marks, errors }) =>
            sum + 2 * scopes.length + marks.length + errors.length, 0);
    }

    // Moves the rows so that this depth is among them.
    reveal(depth) {
        const last = this.base + this.rowsShown.length - 1;
        if (depth < this.base || depth > last)
            this.base = Math.max(0, depth - (this.isCollapsed ? 0 : Lane.mostRows >> 1));
    }

    rowTop(depth) {
        return this.top + Lane.headHeight + (depth - this.base) * Lane.rowHeight;
    }

    // The innermost scope at a time, or null.
    scopeAt(time) {
        let innermost = null;
        for (const { scopes } of this.rows) {
            const scope = scopes[firstEndingFrom(scopes, time)];
            if (!scope || scope.begin > time)
                break;
            innermost = scope;
        }
        return innermost;
    }
}

// The first of entries in order of time that ends at or after it, none before `low`. Entries must not overlap.
function firstEndingFrom(entries, time, low = 0) {
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
