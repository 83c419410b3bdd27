// Draws flows as arrows: those of what is selected, and all others faintly while they can be told apart.
class FlowArrows {
    static most = 200; // in view that are told apart

    constructor(flows, scale, palette) {
        this.flows = flows;
        this.scale = scale;
        this.palette = palette;
    }

    draw({ pen, height }, lanes, scrolled, selected) {
        const placed = this.#inView().map((flow) => this.#place(flow, lanes, scrolled)).filter(Boolean);
        const isSelected = ({ flow: { from, to } }) => from.scope === selected || to.scope === selected;
        if (placed.length <= FlowArrows.most)
            this.#drawAll(pen, height, placed.filter((one) => !isSelected(one)), this.palette.flow, 1);
        this.#drawAll(pen, height, placed.filter(isSelected), this.palette.accent, 2);
    }

    #inView() {
        const { from: left, to: right } = this.scale;
        return this.flows.all.filter(({ from, to }) => to.time >= left && from.time <= right);
    }

    // Where a flow lies on the plot, or null where one of its ends is not to be seen.
    #place(flow, lanes, scrolled) {
        const end = ({ time, scope }) => {
            const { lane, depth } = scope;
            const isShown = lane.rowsShown.includes(lane.rows[depth]);
            const y = lane.rowTop(isShown ? depth : lane.base) + Lane.rowHeight / 2 - (lane.isPinned ? 0 : scrolled);
            return { x: this.scale.x(time), y };
        };
        const [from, to] = [end(flow.from), end(flow.to)];
        const isHidden = ({ lane }, { y }) => !lane.isPinned && y < lanes.pinnedHeight;
        return isHidden(flow.from.scope, from) || isHidden(flow.to.scope, to) ? null : { flow, from, to };
    }

    #drawAll(pen, height, placed, colour, thickness) {
        pen.strokeStyle = pen.fillStyle = colour;
        pen.lineWidth = thickness;
        for (const { from, to } of placed) {
            if (Math.max(from.y, to.y) >= 0 && Math.min(from.y, to.y) <= height)
                FlowArrows.#drawArrow(pen, from, to);
        }
    }

    static #drawArrow(pen, from, to) {
        const bend = Math.max(16, (to.x - from.x) / 2);
        pen.beginPath();
        pen.moveTo(from.x, from.y);
        pen.bezierCurveTo(from.x + bend, from.y, to.x - bend, to.y, to.x, to.y);
        pen.stroke();
        pen.beginPath();
        pen.moveTo(to.x, to.y);
        pen.lineTo(to.x - 7, to.y - 4);
        pen.lineTo(to.x - 7, to.y + 4);
        pen.fill();
    }
}
