// The scopes of a range added up: by the path of calls that leads to them, below their threads, and by function.
class CallTree {
    constructor(lanes, from, to) {
        this.root = CallTree.#node("All threads", null);
        for (const lane of lanes)
            this.#addLane(lane, from, to);
        CallTree.#finish(this.root);
        this.#addUpFunctions();
    }

    static #node(name, parent) {
        return {
            name, parent, count: 0, self: 0, total: 0, longest: 0, children: new Map(),
            depth: parent ? parent.depth + 1 : 0,
        };
    }

    static #child(parent, name) {
        let node = parent.children.get(name);
        if (!node) {
            node = CallTree.#node(name, parent);
            parent.children.set(name, node);
        }
        return node;
    }

    // What lies outside of the range is cut off; the inner scopes take from the outer one's own time.
    #addLane(lane, from, to) {
        const thread = CallTree.#child(this.root, lane.name);
        let outer = new Map();
        for (const { scopes } of lane.rows) {
            const inner = new Map();
            for (let i = firstEndingFrom(scopes, from); i < scopes.length && scopes[i].begin <= to; ++i) {
                const parent = outer.get(scopes[i].around) ?? thread;
                inner.set(scopes[i], CallTree.#addScope(scopes[i], parent, from, to));
            }
            outer = inner;
        }
    }

    static #addScope(scope, parent, from, to) {
        const length = Math.min(scope.end, to) - Math.max(scope.begin, from);
        const node = CallTree.#child(parent, scope.name);
        node.count += 1;
        node.self += length;
        node.longest = Math.max(node.longest, length);
        if (parent.count > 0)
            parent.self -= length;
        return node;
    }

    // Totals from below, and what took longest first.
    static #finish(node) {
        for (const child of node.children.values())
            CallTree.#finish(child);
        node.children = [...node.children.values()].sort((one, other) => other.total - one.total);
        node.total = node.children.reduce((sum, child) => sum + child.total, node.self);
        node.height = node.children.reduce((most, child) => Math.max(most, child.height), 0) + 1;
    }

    // A function's total counts once where it is inside itself.
    #addUpFunctions() {
        const functions = new Map();
        const open = new Set();
        const visit = (node) => {
            const sums = functions.get(node.name) ?? { name: node.name, count: 0, self: 0, total: 0, longest: 0 };
            functions.set(node.name, sums);
            sums.count += node.count;
            sums.self += node.self;
            sums.longest = Math.max(sums.longest, node.longest);
            const isOutermost = !open.has(node.name);
            sums.total += isOutermost ? node.total : 0;
            open.add(node.name);
            node.children.forEach(visit);
            if (isOutermost)
                open.delete(node.name);
        };
        for (const thread of this.root.children)
            thread.children.forEach(visit);
        this.functions = [...functions.values()];
    }
}
