// The page: what is in view, selected, spanned and looked for, and who shows it.
class Timeline {
    constructor(trace) {
        this.trace = trace;
        this.scale = new TimeScale(trace.begin, trace.end);
        this.palette = new Palette(trace);
        this.lanes = new Lanes(trace);
        this.painter = new Painter(this.lanes, this.scale, this.palette, trace.flows);
        this.overview = new Overview(trace, this.scale, this.palette);
        this.panel = new Panel(trace, (entry) => this.goTo(entry));
        this.functions = new FunctionTable((name) => this.lookFor(name));
        this.flames = new FlameGraph(this.palette, (node, root) => this.#showFlame(node, root));
        this.heads = new LaneHeads(this.lanes, () => this.#layOut());
        this.errors = trace.errors;
        this.found = [];
        this.main = element("main");
        this.plot = element("#plot");
        this.search = element("#search");
        this.#listen();
        this.#goToPlace();
    }

    // Shows a scope, or what else happened amid the scope around it.
    goTo(entry) {
        const scope = entry.isScope ? entry : entry.around ?? this.trace;
        const length = Math.max(scope.end - scope.begin, 2) * 1.5;
        const span = entry.isScope ? length : Math.min(length, this.scale.span);
        const middle = (entry.begin + entry.end) / 2;
        this.scale.show(middle - span / 2, middle + span / 2);
        this.#scrollTo(entry);
        this.select(entry);
    }

    // Shows it with as little movement as can be.
    reveal(entry) {
        const { scale } = this;
        if (entry.end < scale.from || entry.begin > scale.to || entry.end - entry.begin > scale.span * 4)
            scale.show(entry.begin - scale.span / 2, entry.begin + scale.span / 2);
        this.#scrollTo(entry);
        this.select(entry);
    }

    #scrollTo({ lane, depth }) {
        lane.reveal(depth);
        this.#layOut();
        const y = lane.rowTop(depth) - this.main.scrollTop;
        if (!lane.isPinned && (y < this.lanes.pinnedHeight + Lane.headHeight || y > this.main.clientHeight - 40))
            this.main.scrollTop += y - this.main.clientHeight / 2;
    }

    select(entry) {
        this.painter.selected = entry;
        this.panel.showSelected(entry);
        this.redraw();
    }

    lookFor(text) {
        this.search.value = text;
        this.found = this.trace.find(text);
        const isLookedFor = text.trim() !== "";
        this.painter.isSearching = isLookedFor;
        if (isLookedFor)
            this.#markFound();
        this.panel.showFound(this.found, isLookedFor);
        this.redraw();
    }

    #markFound() {
        const found = new Set(this.found);
        for (const row of this.trace.lanes.flatMap(({ rows }) => rows))
            row.found = row.filter((entry) => found.has(entry.change ?? entry));
    }

    goToFound(step) {
        this.#step(this.found, step);
    }

    goToError(step) {
        this.#step(this.errors, step);
    }

    // From the selected one on, or else the first or last that is in view.
    #step(entries, step) {
        if (entries.length === 0)
            return;
        const at = entries.indexOf(this.painter.selected);
        const edge = step > 0 ? this.scale.from : this.scale.to;
        const inView = step > 0 ? entries.findIndex(({ end }) => end >= edge)
            : entries.findLastIndex(({ begin }) => begin <= edge);
        const next = at >= 0 ? at + step : Math.max(inView, 0);
        this.goTo(entries[(next + entries.length) % entries.length]);
    }

    setRange(one, other) {
        const [from, to] = one < other ? [one, other] : [other, one];
        this.painter.range = { from: Math.max(from, this.trace.begin), to: Math.min(to, this.trace.end) };
        this.#showRange();
        this.redraw();
    }

    // Makes a range of the selected entry.
    spanSelected() {
        const { selected } = this.painter;
        if (!selected)
            return;
        this.setRange(selected.begin, selected.end);
        this.addUp();
    }

    #showRange() {
        const { range } = this.painter;
        element("#range").hidden = !range;
        if (range)
            element("#range p").textContent = `${TimeScale.seconds(range.to - range.from)}, ` +
                `from ${this.trace.seconds(range.from)} to ${this.trace.seconds(range.to)}`;
    }

    // Fills the table of functions and the flame graph, as far as either is open.
    addUp() {
        const { range } = this.painter;
        const details = element("#functions");
        details.open ||= range !== null;
        if (!details.open && !this.flames.isShown)
            return;
        const tree = new CallTree(this.trace.threads, range?.from ?? this.trace.begin, range?.to ?? this.trace.end);
        this.functions.show(tree.functions, `Functions in ${range ? "the range" : "the whole dump"}`);
        this.flames.show(tree);
        this.redraw();
    }

    toggleFlames() {
        this.flames.toggle();
        this.addUp();
    }

    #showFlame({ name, count, self, total }, root) {
        const part = root.total > 0 ? (100 * total / root.total).toFixed(1) : 0;
        element("#flame-told").textContent = `${name}: ${TimeScale.seconds(total)} (${part} %), itself ` +
            `${TimeScale.seconds(self)}${count > 0 ? `, entered ${count.toLocaleString("en")} times` : ""}`;
        this.redraw();
    }

    // Escape: first what is looked for, then the range, then what is selected.
    letGo() {
        if (this.search.value) {
            this.search.blur();
            this.lookFor("");
        } else if (this.painter.range) {
            this.painter.range = null;
            this.#showRange();
            this.addUp();
        } else {
            this.select(null);
        }
        this.redraw();
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
        cancelAnimationFrame(this.frame);
        this.frame = null;
        this.painter.draw(this.main.scrollTop);
        this.heads.clip(this.main.scrollTop);
        this.overview.draw();
        this.flames.draw();
        this.#rememberPlace();
    }

    #layOut() {
        this.lanes.layOut();
        this.heads.place();
        this.redraw();
    }

    #hideDismissed(isHidden) {
        const passes = (error) => !isHidden || !error.isDismissed;
        this.errors = this.trace.errors.filter(passes);
        for (const row of this.trace.threads.flatMap(({ rows }) => rows)) {
            row.allErrors ??= row.errors;
            row.errors = row.allErrors.filter(passes);
        }
        this.panel.showErrors(this.errors);
        this.lookFor(this.search.value);
    }

    // The address follows what is seen, once it has come to rest; browsers refuse to be told each frame.
    #rememberPlace() {
        clearTimeout(this.resting);
        this.resting = setTimeout(() => {
            this.place = PlaceLink.compose(this.trace, this.scale, this.painter.selected);
            history.replaceState(null, "", this.place);
        }, 300);
    }

    #goToPlace() {
        const wanted = location.hash === this.place ? null : PlaceLink.read(this.trace, location.hash);
        if (!wanted)
            return;
        if (wanted.entry)
            this.goTo(wanted.entry);
        this.scale.show(wanted.from, wanted.to);
        this.redraw();
    }

    #listen() {
        new Keyboard(this);
        new Pointer(this);
        new SidePanel();
        const redraw = () => this.redraw();
        this.main.onscroll = redraw;
        this.search.oninput = () => this.lookFor(this.search.value);
        element("#fit").onclick = () => this.fit();
        element("#flame").onclick = () => this.toggleFlames();
        element("#keys").onclick = () => element("#help").showModal();
        element("#clear-range").onclick = () => this.letGo();
        element("#hide-dismissed").onchange = ({ target }) => this.#hideDismissed(target.checked);
        element("#functions").ontoggle = () => this.functions.functions ?? this.addUp();
        element("#order").onchange = ({ target }) => {
            this.lanes.order = target.value;
            this.#layOut();
        };
        for (const button of document.querySelectorAll("[data-zoom]"))
            button.onclick = () => this.#zoom(Number(button.dataset.zoom));
        window.onhashchange = () => this.#goToPlace();
        matchMedia("(prefers-color-scheme: dark)").onchange = () => this.#recolour();
        const observer = new ResizeObserver(() => this.#draw()); // at once, so that nothing stale is shown
        for (const element of [this.main, this.flames.section])
            observer.observe(element);
    }

    #zoom(factor) {
        this.scale.zoom(factor);
        this.redraw();
    }

    #recolour() {
        this.palette.read();
        this.redraw();
    }
}

// Has a name so that the console reaches it.
const timeline = new Timeline(new Trace(JSON.parse(document.getElementById("trace").textContent)));
