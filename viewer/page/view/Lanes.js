// The order of the lanes on the plot, and where each lies. Pinned ones stand on top and do not scroll.
class Lanes {
    static orders = {
        appearance: () => 0,
        name: (one, other) => one.name.localeCompare(other.name) || one.id - other.id,
        time: (one, other) => one.begin - other.begin,
        activity: (one, other) => other.activity - one.activity,
    };

    order = "appearance";

    constructor(trace) {
        this.trace = trace;
        this.layOut();
    }

    layOut() {
        const sorted = [...this.trace.lanes].sort(Lanes.orders[this.order]);
        this.pinned = sorted.filter((lane) => lane.isPinned);
        this.loose = sorted.filter((lane) => !lane.isPinned);
        this.pinnedHeight = Lanes.#stack(this.pinned, 0);
        this.height = Lanes.#stack(this.loose, this.pinnedHeight);
    }

    static #stack(lanes, top) {
        for (const lane of lanes) {
            lane.top = top;
            top += lane.height;
        }
        return top;
    }

    // The lane at a height of the plot, and how far that is below the lane's top.
    at(y, scrolled) {
        const isPinned = y < this.pinnedHeight;
        const height = isPinned ? y : y + scrolled;
        const lane = (isPinned ? this.pinned : this.loose)
            .find(({ top, height: own }) => height >= top && height < top + own);
        return { lane, below: lane ? height - lane.top : 0 };
    }

    rowAt(y, scrolled) {
        const { lane, below } = this.at(y, scrolled);
        return lane?.rowsShown[Math.floor((below - Lane.headHeight) / Lane.rowHeight)] ?? null;
    }
}
