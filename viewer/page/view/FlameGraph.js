// Draws a call tree: each bar as wide as the time below it, that on its right end its own. A click makes
// a bar the widest.
class FlameGraph {
    static rowHeight = 18;

    constructor(palette, onSelect) {
        this.palette = palette;
        this.onSelect = onSelect;
        this.section = document.getElementById("flames");
        this.canvas = document.getElementById("flame-plot");
        this.#listen();
    }

    get isShown() {
        return !this.section.hidden;
    }

    toggle() {
        this.section.hidden = this.isShown;
        document.getElementById("flame").setAttribute("aria-expanded", this.isShown);
    }

    show(tree) {
        this.tree = tree;
        this.focus(tree.root);
    }

    focus(node) {
        this.top = node;
        this.select(node);
        document.getElementById("flame-height").style.height =
            `${(node.depth + node.height) * FlameGraph.rowHeight}px`;
    }

    select(node) {
        this.selected = node;
        this.onSelect(node, this.tree.root);
    }

    draw() {
        if (!this.isShown)
            return;
        const { pen, width, height } = beginDrawing("flame-plot");
        const scrolled = this.section.scrollTop;
        this.bars = [];
        pen.translate(0, -scrolled);
        for (let node = this.top.parent; node; node = node.parent)
            this.#drawBar(pen, node, 0, width);
        this.#drawBelow(pen, this.top, 0, width, scrolled + height);
    }

    #drawBelow(pen, node, left, width, bottom) {
        if (width < 0.5 || node.depth * FlameGraph.rowHeight > bottom)
            return;
        this.#drawBar(pen, node, left, width);
        for (const child of node.children) {
            const part = node.total > 0 ? width * child.total / node.total : 0;
            this.#drawBelow(pen, child, left, part, bottom);
            left += part;
        }
    }

    #drawBar(pen, node, left, width) {
        const top = node.depth * FlameGraph.rowHeight;
        this.bars.push({ node, left, width });
        pen.fillStyle = node.count > 0 ? this.palette.bar(node.name) : this.palette.grid;
        pen.fillRect(left, top, Math.max(width - 0.5, 0.5), FlameGraph.rowHeight - 1);
        if (width >= Painter.leastLabel) {
            pen.fillStyle = this.palette.ink;
            drawLabel(pen, node.name, left + 4, top + FlameGraph.rowHeight / 2, width - 6);
        }
        if (node === this.selected) {
            pen.strokeStyle = this.palette.accent;
            pen.lineWidth = 2;
            pen.strokeRect(left + 1, top + 1, Math.max(width - 2.5, 1), FlameGraph.rowHeight - 3);
        }
    }

    #nodeAt({ offsetX, offsetY }) {
        const depth = Math.floor((offsetY + this.section.scrollTop) / FlameGraph.rowHeight);
        return this.bars.find(({ node, left, width }) =>
            node.depth === depth && offsetX >= left && offsetX < left + width)?.node;
    }

    #listen() {
        this.canvas.onclick = (event) => this.focus(this.#nodeAt(event) ?? this.tree.root);
        this.canvas.onpointermove = (event) => {
            const node = this.#nodeAt(event);
            if (node && node !== this.selected)
                this.select(node);
        };
        this.canvas.onkeydown = (event) => this.#obeyKey(event);
        this.section.onscroll = () => this.draw();
    }

    #obeyKey(event) {
        const { parent, children } = this.selected;
        const sibling = (step) => parent?.children[parent.children.indexOf(this.selected) + step];
        const steps = {
            ArrowUp: parent, ArrowDown: children[0], ArrowLeft: sibling(-1), ArrowRight: sibling(1),
        };
        if (event.key === "Enter")
            this.focus(this.selected);
        else if (event.key === "Backspace")
            this.focus(this.top.parent ?? this.tree.root);
        else if (Object.hasOwn(steps, event.key))
            this.select(steps[event.key] ?? this.selected);
        else
            return;
        event.preventDefault();
        event.stopPropagation();
    }
}
