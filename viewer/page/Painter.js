// Draws the lanes on the plot, and the times above it on the axis. Only what is in view is drawn, and
// of what falls on one pixel only the first.
class Painter {
    static laneTop = 24;    // room for the name of the thread
    static rowHeight = 20;
    static laneGap = 10;
    static leastLabel = 28; // pixels of a scope that has its name in it
    static reach = 4;       // pixels between the pointer and a mark that it is on

    constructor(trace, scale) {
        this.trace = trace;
        this.scale = scale;
        this.selected = null;
        this.found = null; // a set, or null when nothing is looked for
        this.#layOut();
        this.#chooseHues();
    }

    #layOut() {
        let top = 0;
        for (const lane of this.trace.lanes) {
            lane.top = top;
            lane.height = Painter.laneTop + Math.max(1, lane.rows.length) * Painter.rowHeight + Painter.laneGap;
            top += lane.height;
        }
        this.height = top;
    }

    // All scopes of a class look alike, and those that come one after the other far from alike. Reds
    // are left to errors.
    #chooseHues() {
        const classes = new Set();
        for (const { isScope, name } of this.trace.entries) {
            if (isScope)
                classes.add(Painter.#className(name));
        }
        this.hues = new Map([...classes].map((name, i) => [name, 40 + i * 0.618 % 1 * 280]));
    }

    static #className(place) {
        return place.split(".")[0];
    }

    rowTop({ lane, depth }) {
        return lane.top + Painter.laneTop + Math.min(depth, Trace.deepestRow) * Painter.rowHeight;
    }

    // What is at a place of the whole plot, or null. Marks lie on scopes.
    entryAt(x, y) {
        const lane = this.trace.lanes.find(({ top, height }) => y >= top && y < top + height);
        const row = lane?.rows[Math.floor((y - lane.top - Painter.laneTop) / Painter.rowHeight)];
        return row ? this.#markAt(row.marks, x) ?? this.#scopeAt(row.scopes, x) : null;
    }

    // The nearest, but errors before all else.
    #markAt(marks, x) {
        const { scale } = this;
        const near = [];
        for (let i = firstEndingFrom(marks, scale.time(x - Painter.reach)); i < marks.length; ++i) {
            if (scale.x(marks[i].begin) > x + Painter.reach)
                break;
            near.push(marks[i]);
        }
        const distance = ({ begin, isError }) => Math.abs(scale.x(begin) - x) + (isError ? 0 : Painter.reach);
        return near.sort((one, other) => distance(one) - distance(other))[0] ?? null;
    }

    #scopeAt(scopes, x) {
        const scope = scopes[firstEndingFrom(scopes, this.scale.time(x - 1))];
        return scope && this.scale.x(scope.begin) <= x + 1 ? scope : null;
    }

    draw(scrolled) {
        this.colours = themeColours();
        const plot = beginDrawing("plot");
        this.scale.width = plot.width;
        this.#drawAxis(beginDrawing("axis"));
        this.#drawGrid(plot);
        plot.pen.translate(0, -scrolled);
        for (const lane of this.trace.lanes) {
            if (lane.top < scrolled + plot.height && lane.top + lane.height > scrolled)
                this.#drawLane(plot, lane);
        }
    }

    #drawAxis({ pen, width, height }) {
        pen.fillStyle = this.colours.quiet;
        for (const { time, label } of this.scale.ticks(90)) {
            const x = this.scale.x(time);
            pen.fillRect(x, height - 5, 1, 5);
            if (x + 4 + pen.measureText(label).width < width)
                pen.fillText(label, x + 4, height / 2);
        }
    }

    #drawGrid({ pen, height }) {
        pen.fillStyle = this.colours.grid;
        for (const { time } of this.scale.ticks(90))
            pen.fillRect(this.scale.x(time), 0, 1, height);
    }

    #drawLane({ pen, width }, lane) {
        pen.fillStyle = this.colours.line;
        pen.fillRect(0, lane.top, width, 1);
        for (const row of lane.rows)
            this.#drawScopes(pen, row.scopes);
        for (const isError of [false, true]) {
            for (const row of lane.rows)
                this.#drawMarks(pen, row.marks, isError);
        }
    }

    *#inView(entries) {
        for (let i = firstEndingFrom(entries, this.scale.from); i < entries.length; ++i) {
            if (entries[i].begin > this.scale.to)
                return;
            yield entries[i];
        }
    }

    #drawScopes(pen, scopes) {
        let drawnTo = -Infinity;
        for (const scope of this.#inView(scopes)) {
            const left = Math.max(this.scale.x(scope.begin), -2);
            const right = Math.min(this.scale.x(scope.end), this.scale.width + 2);
            if (right < drawnTo && !this.#standsOut(scope))
                continue;
            drawnTo = Math.max(right, left + 1);
            this.#drawScope(pen, scope, left, Math.max(1, right - left - 0.5));
        }
    }

    #standsOut(entry) {
        return entry === this.selected || Boolean(this.found?.has(entry));
    }

    #drawScope(pen, scope, left, width) {
        const top = this.rowTop(scope);
        pen.globalAlpha = this.found && !this.#standsOut(scope) ? 0.25 : 1;
        pen.fillStyle = this.#classColour(scope.name);
        pen.fillRect(left, top, width, Painter.rowHeight - 2);
        if (width >= Painter.leastLabel) {
            pen.fillStyle = this.colours.ink;
            this.#drawLabel(pen, scope.name, left + 5, top + Painter.rowHeight / 2 - 0.5, width - 8);
        }
        pen.globalAlpha = 1;
        if (scope === this.selected) {
            pen.strokeStyle = this.colours.accent;
            pen.lineWidth = 2;
            pen.strokeRect(left, top, width, Painter.rowHeight - 2);
        }
    }

    #drawLabel(pen, text, x, y, width) {
        const widthOf = (label) => pen.measureText(label).width;
        let label = text.slice(0, Math.ceil(width / 2)); // no letter is narrower
        let length = Math.floor(label.length * width / widthOf(label));
        while (length < text.length && length > 3 && widthOf(label = `${text.slice(0, length)}…`) > width)
            --length;
        if (length > 3)
            pen.fillText(label, x, y);
    }

    #classColour(name) {
        const hue = this.hues.get(Painter.#className(name));
        return `hsl(${hue} ${this.colours["bar-saturation"]} ${this.colours["bar-lightness"]})`;
    }

    #drawMarks(pen, marks, isError) {
        let drawnTo = -Infinity;
        for (const mark of this.#inView(marks)) {
            const x = this.scale.x(mark.begin);
            if (mark.isError !== isError || x < drawnTo + 1 && !this.#standsOut(mark))
                continue;
            drawnTo = x;
            pen.globalAlpha = this.found && !this.#standsOut(mark) ? 0.25 : 1;
            this.#drawMark(pen, mark, x);
            pen.globalAlpha = 1;
        }
    }

    #drawMark(pen, mark, x) {
        const bottom = this.rowTop(mark) + Painter.rowHeight - 2;
        const isSelected = mark === this.selected;
        if (mark.isError) {
            this.#drawDiamond(pen, x, bottom - 9, isSelected, mark.name.startsWith("Dismissed"));
            return;
        }
        const rise = isSelected ? 14 : 7;
        pen.fillStyle = isSelected ? this.colours.accent : this.colours[mark.cat] ?? this.colours.mark;
        pen.fillRect(x - 1, bottom - rise, 2, rise);
        if (mark.cat === "state")
            pen.fillRect(x - 1, bottom - rise, 5, 3);
    }

    #drawDiamond(pen, x, y, isSelected, isHollow) {
        const reach = isSelected ? 8 : 6;
        pen.beginPath();
        pen.moveTo(x, y - reach);
        pen.lineTo(x + reach, y);
        pen.lineTo(x, y + reach);
        pen.lineTo(x - reach, y);
        pen.closePath();
        pen.fillStyle = isHollow ? this.colours.back : this.colours.error;
        pen.strokeStyle = isSelected ? this.colours.accent : isHollow ? this.colours.error : this.colours.back;
        pen.lineWidth = isSelected || isHollow ? 2 : 1;
        pen.fill();
        pen.stroke();
    }
}
