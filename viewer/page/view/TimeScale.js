// The part of the dump that is in view, and where its times lie on a line of pixels.
class TimeScale {
    static shortest = 4; // microseconds in view

    constructor(begin, end) {
        const margin = Math.max((end - begin) * 0.01, TimeScale.shortest / 2);
        this.first = begin - margin;
        this.last = end + margin;
        this.width = 1;
        this.fit();
    }

    get span() {
        return this.to - this.from;
    }

    x(time) {
        return (time - this.from) / this.span * this.width;
    }

    time(x) {
        return this.from + x / this.width * this.span;
    }

    fit() {
        this.show(this.first, this.last);
    }

    show(from, to) {
        const span = Math.min(Math.max(to - from, TimeScale.shortest), this.last - this.first);
        const middle = (from + to) / 2;
        this.from = Math.min(Math.max(middle - span / 2, this.first), this.last - span);
        this.to = this.from + span;
    }

    // By parts of what is in view.
    move(part) {
        const time = part * this.span;
        this.show(this.from + time, this.to + time);
    }

    // What is at the time stays where it is.
    zoom(factor, time = (this.from + this.to) / 2) {
        const span = Math.max(this.span * factor, TimeScale.shortest);
        const from = time - (time - this.from) * span / this.span;
        this.show(from, from + span);
    }

    // Round times in view, far enough from each other for their labels.
    *ticks(pixelsApart) {
        const least = this.span * pixelsApart / this.width;
        const decade = 10 ** Math.floor(Math.log10(least));
        const step = Math.max(1, [1, 2, 5, 10].find((digit) => digit * decade >= least) * decade);
        const digits = Math.max(0, Math.ceil(Math.log10(1e6 / step)));
        for (let time = Math.ceil(this.from / step) * step; time <= this.to; time += step)
            yield { time, label: `${(time / 1e6).toFixed(digits)} s` };
    }

    // All times are told in the unit of the dump and of the command line.
    static seconds(microseconds) {
        return `${(microseconds / 1e6).toFixed(6)} s`;
    }
}
