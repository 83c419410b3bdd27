// Draws the lanes on the plot, and the times above it on the axis. Only what is in view is drawn, and
// of what falls on one pixel only the first.
class Painter {
    static leastLabel = 28; // pixels of a scope that has its name in it
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
        const rows = lane.rowsShown;
        pen.globalAlpha = this.isSearching ? 0.25 : 1;
        this.#drawRows(pen, rows);
        pen.globalAlpha = 1;
        if (this.isSearching)
            this.#drawRows(pen, rows.map((row) => row.found));
        if (this.selected?.lane === lane && lane.rowsShown.includes(lane.rows[this.selected.depth]))
            this.#drawSelected(pen, this.selected);
    }

    #drawRows(pen, rows) {
        const draw = {
            scopes: (scope) => this.#drawScope(pen, scope), marks: (mark) => this.#drawMark(pen, mark),
            errors: (error) => this.#drawMark(pen, error),
        };
        for (const [kind, pixels] of Object.entries(Painter.apart)) {
            for (const row of rows)
                this.#drawApart(row[kind], pixels, draw[kind]);
        }
    }

    #drawSelected(pen, entry) {
        if (entry.isScope)
            this.#drawScope(pen, entry);
        else
            this.#drawMark(pen, entry);
    }

    // Those in view that end at least so many pixels behind the one drawn before.
    #drawApart(entries, pixels, draw) {
        const { from, to, span, width } = this.scale;
        const least = pixels * span / width;
        for (let i = firstEndingFrom(entries, from); i < entries.length && entries[i].begin <= to;) {
            const { begin, end } = entries[i];
            draw(entries[i]);
            const next = Math.max(end, begin + least);
            ++i;
            if (i < entries.length && entries[i].end < next)
                i = firstEndingFrom(entries, next, i);
        }
    }

    #drawScope(pen, scope) {
        const left = Math.max(Math.floor(this.scale.x(scope.begin)), -2); // what is narrow stays sharp
        const width = Math.max(1, Math.min(this.scale.x(scope.end), this.scale.width + 2) - left - 0.5);
        const top = scope.lane.rowTop(scope.depth);
        pen.fillStyle = this.palette.bar(scope.name);
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

    #drawMark(pen, mark) {
        const x = this.scale.x(mark.begin);
        const bottom = mark.lane.rowTop(mark.depth) + Lane.rowHeight - 2;
        const isSelected = mark === this.selected;
        if (mark.isError) {
            this.#drawDiamond(pen, x, bottom - 9, isSelected, mark.isDismissed);
            return;
        }
        const rise = isSelected ? 14 : 7;
        pen.fillStyle = isSelected ? this.palette.accent : this.palette[mark.cat] ?? this.palette.mark;
        pen.fillRect(x - 1, bottom - rise, 2, rise);
        if (mark.cat === "state")
            pen.fillRect(x - 1, bottom - rise, 5, 3);
    }

    #drawDiamond(pen, x, y, isSelected, isHollow) {
        const { accent, back, error } = this.palette;
        const reach = isSelected ? 8 : 6;
        pen.beginPath();
        pen.moveTo(x, y - reach);
        pen.lineTo(x + reach, y);
        pen.lineTo(x, y + reach);
        pen.lineTo(x - reach, y);
        pen.closePath();
        pen.fillStyle = isHollow ? back : error;
        pen.strokeStyle = isSelected ? accent : isHollow ? error : back;
        pen.lineWidth = isSelected || isHollow ? 2 : 1;
        pen.fill();
        pen.stroke();
    }
}
