// Draws the lanes on the plot, and the times above it on the axis. Only what is in view is drawn, and
// of what falls on one pixel only the first.
class Painter {
    static leastBar = 2;    // pixels of a scope that is told from its neighbours
    static leastLabel = 28; // and of one that has its name in it
    static reach = 4;       // pixels between the pointer and a mark that it is on
    static apart = { scopes: 1, marks: 2, errors: 4 }; // pixels, where they crowd

    constructor(lanes, scale, palette, flows) {
        this.lanes = lanes;
        this.scale = scale;
        this.palette = palette;
        this.arrows = new FlowArrows(flows, scale, palette);
        this.selected = null;
        this.range = null;
        this.isSearching = false;
    }

    // What is at a place of the plot, or null. Marks lie on scopes.
    entryAt(x, y, scrolled) {
        const row = this.lanes.rowAt(y, scrolled);
        return row ? this.#markAt(row, x) ?? this.#scopeAt(row.scopes, x) : null;
    }

    // The nearest, but errors before all else.
    #markAt({ marks, errors }, x) {
        const { scale } = this;
        const near = [];
        for (const entries of [errors, marks]) {
            for (let i = firstEndingFrom(entries, scale.time(x - Painter.reach)); i < entries.length; ++i) {
                if (scale.x(entries[i].begin) > x + Painter.reach)
                    break;
                near.push(entries[i]);
            }
        }
        const distance = ({ begin, isError }) => Math.abs(scale.x(begin) - x) + (isError ? 0 : Painter.reach);
        return near.sort((one, other) => distance(one) - distance(other))[0] ?? null;
    }

    #scopeAt(scopes, x) {
        const scope = scopes[firstEndingFrom(scopes, this.scale.time(x - 1))];
        return scope && this.scale.x(scope.begin) <= x + 1 ? scope : null;
    }

    draw(scrolled) {
        const plot = beginDrawing("plot");
        this.scale.width = plot.width;
        this.#drawAxis(beginDrawing("axis"));
        this.#drawGrid(plot);
        this.#drawLoose(plot, scrolled);
        for (const lane of this.lanes.pinned)
            this.#drawLane(plot, lane);
        this.arrows.draw(plot, this.lanes, scrolled, this.selected);
        this.#drawRange(plot);
    }

    #drawLoose({ pen, width, height }, scrolled) {
        pen.save();
        pen.beginPath();
        pen.rect(0, this.lanes.pinnedHeight, width, height);
        pen.clip();
        pen.translate(0, -scrolled);
        for (const lane of this.lanes.loose) {
            if (lane.top < scrolled + height && lane.top + lane.height > scrolled)
                this.#drawLane({ pen, width }, lane);
        }
        pen.restore();
    }

    #drawAxis({ pen, width, height }) {
        pen.fillStyle = this.palette.quiet;
        for (const { time, label } of this.scale.ticks(90)) {
            const x = this.scale.x(time);
            pen.fillRect(x, height - 5, 1, 5);
            if (x + 4 + pen.measureText(label).width < width)
                pen.fillText(label, x + 4, height / 2);
        }
    }

    #drawGrid({ pen, height }) {
        pen.fillStyle = this.palette.grid;
        for (const { time } of this.scale.ticks(90))
            pen.fillRect(this.scale.x(time), 0, 1, height);
    }

    #drawRange({ pen, width, height }) {
        if (!this.range)
            return;
        const [left, right] = [this.scale.x(this.range.from), this.scale.x(this.range.to)];
        pen.fillStyle = this.palette.shade;
        pen.fillRect(0, 0, left, height);
        pen.fillRect(right, 0, width - right, height);
        pen.fillStyle = this.palette.accent;
        pen.fillRect(left - 1, 0, 1, height);
        pen.fillRect(right, 0, 1, height);
    }

    // While something is looked for, what is not found is faint.
    #drawLane({ pen, width }, lane) {
        pen.fillStyle = this.palette.line;
        pen.fillRect(0, lane.top, width, 1);
        pen.globalAlpha = this.isSearching ? 0.25 : 1;
        lane.rowsShown.forEach((row, i) => this.#drawRow(pen, row, lane.rowTop(lane.base + i)));
        pen.globalAlpha = 1;
        if (this.isSearching)
            lane.rowsShown.forEach(({ found }, i) => this.#drawRow(pen, found, lane.rowTop(lane.base + i)));
        if (this.selected?.lane === lane && lane.rowsShown.includes(lane.rows[this.selected.depth]))
            this.#drawSelected(pen, this.selected);
    }

    #drawRow(pen, { scopes, marks, errors }, top) {
        this.#drawScopes(pen, scopes, top);
        this.#drawMarks(pen, marks, top);
        this.#drawErrors(pen, errors, top);
    }

    #drawSelected(pen, entry) {
        const top = entry.lane.rowTop(entry.depth);
        if (entry.isScope)
            this.#drawScope(pen, entry, top);
        else if (entry.isError)
            this.#drawSelectedError(pen, entry, top);
        else
            this.#drawSelectedMark(pen, entry, top);
    }

    // Those in view, but of what begins in one stretch of so many pixels only the first.
    #forEachApart(entries, pixels, draw) {
        const { from, to, span, width } = this.scale;
        const stretch = pixels * span / width;
        for (let i = firstEndingFrom(entries, from); i < entries.length && entries[i].begin <= to;) {
            const { begin, end } = entries[i];
            draw(entries[i]);
            const next = Math.max(end, from + (Math.floor((begin - from) / stretch) + 1) * stretch);
            ++i;
            if (i < entries.length && entries[i].end < next)
                i = firstEndingFrom(entries, next, i);
        }
    }

    #drawScopes(pen, scopes, top) {
        const crowd = new Crowd(pen, top, Lane.rowHeight - 2);
        this.#forEachApart(scopes, Painter.apart.scopes, (scope) => {
            const { left, width } = this.#extent(scope);
            if (width < Painter.leastBar)
                crowd.add(left, width, this.palette.bar(scope.look));
            else
                this.#drawScope(pen, scope, top);
        });
        crowd.draw();
    }

    // What is narrow stays sharp.
    #extent({ begin, end }) {
        const left = Math.max(Math.floor(this.scale.x(begin)), -2);
        return { left, width: Math.max(1, Math.min(this.scale.x(end), this.scale.width + 2) - left - 0.5) };
    }

    #drawScope(pen, scope, top) {
        const { left, width } = this.#extent(scope);
        pen.fillStyle = this.palette.bar(scope.look);
        pen.fillRect(left, top, width, Lane.rowHeight - 2);
        if (width >= Painter.leastLabel) {
            pen.fillStyle = this.palette.ink;
            drawLabel(pen, scope.name, left + 5, top + Lane.rowHeight / 2 - 0.5, width - 8);
        }
        if (scope === this.selected) {
            pen.strokeStyle = this.palette.accent;
            pen.lineWidth = 2;
            pen.strokeRect(left, top, width, Lane.rowHeight - 2);
        }
    }

    // Changes of state are flags.
    #drawMarks(pen, marks, top) {
        const bottom = top + Lane.rowHeight - 2;
        const [poles, flags] = [new Crowd(pen, bottom - 7, 7), new Crowd(pen, bottom - 7, 3)];
        this.#forEachApart(marks, Painter.apart.marks, ({ begin, cat }) => {
            const left = this.scale.x(begin) - 1;
            poles.add(left, 2, this.palette[cat] ?? this.palette.mark);
            if (cat === "state")
                flags.add(left, 5, this.palette.state);
        });
        poles.draw();
        flags.draw();
    }

    #drawSelectedMark(pen, { begin, cat }, top) {
        const left = this.scale.x(begin) - 1;
        pen.fillStyle = this.palette.accent;
        pen.fillRect(left, top + Lane.rowHeight - 16, 2, 14);
        if (cat === "state")
            pen.fillRect(left, top + Lane.rowHeight - 16, 5, 3);
    }

    // Diamonds, hollow when they were dismissed.
    #drawErrors(pen, errors, top) {
        const [full, hollow] = [new Path2D(), new Path2D()];
        this.#forEachApart(errors, Painter.apart.errors, (error) =>
            this.#addDiamond(error.isDismissed ? hollow : full, error, top, 6));
        this.#paint(pen, hollow, this.palette.back, this.palette.error, 2);
        this.#paint(pen, full, this.palette.error, this.palette.back, 1);
    }

    #drawSelectedError(pen, error, top) {
        const { accent, back, error: red } = this.palette;
        const diamond = new Path2D();
        this.#addDiamond(diamond, error, top, 8);
        this.#paint(pen, diamond, error.isDismissed ? back : red, accent, 2);
    }

    #addDiamond(path, { begin }, top, reach) {
        const [x, y] = [this.scale.x(begin), top + Lane.rowHeight - 11];
        path.moveTo(x, y - reach);
        path.lineTo(x + reach, y);
        path.lineTo(x, y + reach);
        path.lineTo(x - reach, y);
        path.closePath();
    }

    #paint(pen, path, inside, edge, thickness) {
        pen.fillStyle = inside;
        pen.strokeStyle = edge;
        pen.lineWidth = thickness;
        pen.fill(path);
        pen.stroke(path);
    }
}
