// The page: what the user does, passed on to the scale, the painter and the panel.
class Timeline {
    constructor(trace) {
        this.trace = trace;
        this.scale = new TimeScale(trace.begin, trace.end);
        this.painter = new Painter(trace, this.scale);
        this.overview = new Overview(trace, this.scale);
        this.panel = new Panel(trace, (entry) => this.goTo(entry));
        this.main = document.querySelector("main");
        this.plot = document.getElementById("plot");
        this.search = document.getElementById("search");
        this.#placeLanes();
        this.#listen();
        this.#draw();
    }

    // Shows a scope, or what else happened amid the scope around it.
    goTo(entry) {
        const scope = entry.isScope ? entry : entry.around ?? this.trace;
        const length = Math.max(scope.end - scope.begin, 2) * 1.5;
        const span = entry.isScope ? length : Math.min(length, this.scale.span);
        const middle = (entry.begin + entry.end) / 2;
        this.scale.show(middle - span / 2, middle + span / 2);
        this.main.scrollTop = this.painter.rowTop(entry) - this.main.clientHeight / 2;
        this.select(entry);
    }

    select(entry) {
        this.painter.selected = entry;
        this.panel.showSelected(entry);
        this.redraw();
    }

    look(text) {
        const found = this.trace.find(text);
        const isLookedFor = text.trim() !== "";
        this.painter.found = isLookedFor ? new Set(found) : null;
        this.panel.showFound(found, isLookedFor);
        this.redraw();
    }

    // From the selected error on, or else the first or last that is in view.
    goToError(step) {
        const { errors } = this.trace;
        if (errors.length === 0)
            return;
        const at = errors.indexOf(this.painter.selected);
        const edge = step > 0 ? this.scale.from : this.scale.to;
        const later = errors.filter((error) => error.begin <= edge).length;
        const next = at >= 0 ? at + step : step > 0 ? later : later - 1;
        this.goTo(errors[(next + errors.length) % errors.length]);
    }

    fit() {
        this.scale.fit();
        this.redraw();
    }

    redraw() {
        this.panel.showHint(null);
        this.frame ??= requestAnimationFrame(() => this.#draw());
    }

    #draw() {
        this.frame = null;
        this.painter.draw(this.main.scrollTop);
        this.overview.draw();
    }

    #placeLanes() {
        const lanes = document.getElementById("lanes");
        lanes.style.height = `${this.painter.height}px`;
        for (const lane of this.trace.lanes) {
            const label = document.createElement("div");
            const id = document.createElement("small");
            label.className = "lane";
            label.style.top = `${lane.top + 1}px`;
            id.textContent = ` ${lane.id}`;
            label.append(lane.name, id);
            lanes.append(label);
        }
    }

    #listen() {
        this.#listenToPlot();
        this.#listenToOverview();
        this.main.onscroll = () => this.redraw();
        this.search.oninput = () => this.look(this.search.value);
        document.getElementById("fit").onclick = () => this.fit();
        document.onkeydown = (event) => this.#obeyKey(event);
        matchMedia("(prefers-color-scheme: dark)").onchange = () => this.redraw();
        new ResizeObserver(() => this.redraw()).observe(this.main);
    }

    #listenToPlot() {
        const { plot, scale } = this;
        let pressed = null;
        let isDragged = false;
        plot.onpointerdown = (event) => {
            pressed = event.button === 0 ? event : null;
            isDragged = false;
            plot.setPointerCapture(event.pointerId);
        };
        plot.onlostpointercapture = () => {
            pressed = null;
        };
        plot.onpointermove = (event) => {
            if (!pressed) {
                this.panel.showHint(this.#entryUnder(event), event.clientX, event.clientY);
                return;
            }
            isDragged ||= Math.hypot(event.clientX - pressed.clientX, event.clientY - pressed.clientY) > 3;
            scale.move(-event.movementX / scale.width * scale.span);
            this.main.scrollTop -= event.movementY;
            this.redraw();
        };
        plot.onpointerleave = () => this.panel.showHint(null);
        plot.onclick = (event) => isDragged || this.select(this.#entryUnder(event));
        plot.ondblclick = (event) => {
            const entry = this.#entryUnder(event);
            if (entry)
                this.goTo(entry);
        };
        plot.addEventListener("wheel", (event) => this.#obeyWheel(event), { passive: false });
    }

    #listenToOverview() {
        const strip = document.getElementById("overview");
        const follow = ({ offsetX, buttons }) => {
            if ((buttons & 1) === 0)
                return;
            const { from, to } = this.scale;
            this.scale.move(this.overview.timeAt(offsetX, strip.clientWidth) - (from + to) / 2);
            this.redraw();
        };
        strip.onpointerdown = (event) => {
            strip.setPointerCapture(event.pointerId);
            follow(event);
        };
        strip.onpointermove = follow;
    }

    #entryUnder({ offsetX, offsetY }) {
        return this.painter.entryAt(offsetX, offsetY + this.main.scrollTop);
    }

    // A wheel zooms where the pointer is; sideways, or with Shift, it moves.
    #obeyWheel(event) {
        event.preventDefault();
        const { scale } = this;
        const sideways = event.shiftKey ? event.deltaX || event.deltaY : event.deltaX;
        if (Math.abs(sideways) > Math.abs(event.shiftKey ? 0 : event.deltaY))
            scale.move(sideways / scale.width * scale.span);
        else
            scale.zoom(1.002 ** event.deltaY, scale.time(event.offsetX));
        this.redraw();
    }

    #obeyKey(event) {
        const { scale, search } = this;
        if (event.key === "Escape") {
            search.value = "";
            search.blur();
            this.look("");
            this.select(null);
        }
        if (event.target === search || event.ctrlKey || event.altKey || event.metaKey)
            return;
        const actions = {
            ArrowLeft: () => scale.move(-scale.span / 8),
            ArrowRight: () => scale.move(scale.span / 8),
            ArrowUp: () => scale.zoom(1 / 1.5),
            ArrowDown: () => scale.zoom(1.5),
            e: () => this.goToError(1),
            E: () => this.goToError(-1),
            f: () => this.fit(),
            "/": () => search.focus(),
        };
        if (!Object.hasOwn(actions, event.key))
            return;
        event.preventDefault();
        actions[event.key]();
        this.redraw();
    }
}

// Has a name so that the console reaches it.
const timeline = new Timeline(new Trace(JSON.parse(document.getElementById("trace").textContent)));
