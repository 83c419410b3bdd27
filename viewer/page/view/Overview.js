// Draws the whole dump as a strip: how much happened when, errors on top, the part in view framed.
class Overview {
    static errorHeight = 8;

    constructor(trace, scale, palette) {
        this.trace = trace;
        this.scale = scale;
        this.palette = palette;
        this.counts = [];
        this.errorColumns = new Set();
    }

    draw() {
        const { pen, width, height } = beginDrawing("overview");
        this.#drawCrowd(pen, width, height);
        this.#drawErrors(pen);
        this.#drawView(pen, width, height);
    }

    timeAt(x, width) {
        const { first, last } = this.scale;
        return first + x / width * (last - first);
    }

    #x(time, width) {
        const { first, last } = this.scale;
        return (time - first) / (last - first) * width;
    }

    #drawCrowd(pen, width, height) {
        const counts = this.#countColumns(width);
        const most = Math.log1p(Math.max(...counts));
        pen.beginPath();
        pen.moveTo(0, height);
        counts.forEach((count, column) => {
            const top = height - Math.log1p(count) / most * (height - Overview.errorHeight - 4);
            pen.lineTo(column, top);
            pen.lineTo(column + 1, top);
        });
        pen.lineTo(width, height);
        pen.fillStyle = this.palette.mark;
        pen.fill();
    }

    #countColumns(width) {
        if (this.counts.length !== width) {
            this.counts = new Array(width).fill(0);
            const column = (entry) => Math.floor(this.#x(entry.begin, width));
            for (const entry of this.trace.entries)
                this.counts[column(entry)] += 1;
            this.errorColumns = new Set(this.trace.errors.map(column));
        }
        return this.counts;
    }

    #drawErrors(pen) {
        pen.fillStyle = this.palette.error;
        for (const column of this.errorColumns)
            pen.fillRect(column - 1, 0, 2, Overview.errorHeight);
    }

    #drawView(pen, width, height) {
        const left = this.#x(this.scale.from, width);
        const right = this.#x(this.scale.to, width);
        pen.fillStyle = this.palette.shade;
        pen.fillRect(0, 0, left, height);
        pen.fillRect(right, 0, width, height);
        pen.strokeStyle = this.palette.accent;
        pen.strokeRect(left + 0.5, 0.5, Math.max(1, right - left - 1), height - 1);
    }
}
