// What one thread asked for and another did: a command from its caller to its execution, an event from
// who scheduled it to its firing.
class Flows {
    constructor() {
        this.all = [];
        this.byId = new Map();
    }

    add(event) {
        const { id, ph, name, ts } = event;
        const flow = this.byId.get(id) ?? { name, from: null, to: null };
        if (!this.byId.has(id)) {
            this.byId.set(id, flow);
            this.all.push(flow);
        }
        flow[ph === "s" ? "from" : "to"] = { time: ts, lane: Trace.laneKey(event) };
    }

    // Finds the scopes that flows begin and end in; those that a filter took away go too.
    bind(lanes) {
        const laneOf = new Map(lanes.map((lane) => [lane.key, lane]));
        for (const flow of this.all) {
            for (const end of [flow.from, flow.to].filter(Boolean))
                end.scope = laneOf.get(end.lane)?.scopeAt(end.time) ?? null;
        }
        this.all = this.all.filter(({ from, to }) => from?.scope && to?.scope);
        this.byId.clear();
    }

    of(entry) {
        return this.all.filter(({ from, to }) => from.scope === entry || to.scope === entry);
    }

    static wait({ from, to }) {
        return to.time - from.time;
    }
}
