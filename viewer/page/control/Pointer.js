// What the pointer does on the plot: a drag spans a range, with Shift or a finger it moves; a click selects.
class Pointer {
    constructor(timeline) {
        this.timeline = timeline;
        this.pressed = null;
        this.isDragged = false;
        const { plot } = timeline;
        plot.onpointerdown = (event) => this.#press(event);
        plot.onlostpointercapture = () => this.#release();
        plot.onpointermove = (event) => (this.pressed ? this.#drag(event) : this.#hover(event));
        plot.onpointerleave = () => timeline.panel.showHint(null);
        plot.onclick = (event) => this.isDragged || timeline.select(this.#entryUnder(event));
        plot.ondblclick = (event) => this.#zoomTo(this.#entryUnder(event));
        plot.addEventListener("wheel", (event) => this.#turn(event), { passive: false });
        this.#listenToOverview();
    }

    #entryUnder({ offsetX, offsetY }) {
        return this.timeline.painter.entryAt(offsetX, offsetY, this.timeline.main.scrollTop);
    }

    #press(event) {
        if (event.button > 1)
            return;
        const moves = event.shiftKey || event.button === 1 || event.pointerType === "touch";
        this.pressed = { x: event.clientX, y: event.clientY, time: this.timeline.scale.time(event.offsetX), moves };
        this.isDragged = false;
        this.timeline.plot.setPointerCapture(event.pointerId);
    }

    #release() {
        if (this.pressed && !this.pressed.moves && this.isDragged)
            this.timeline.addUp();
        this.pressed = null;
    }

    #drag(event) {
        const { pressed, timeline } = this;
        this.isDragged ||= Math.hypot(event.clientX - pressed.x, event.clientY - pressed.y) > 3;
        if (!this.isDragged)
            return;
        if (pressed.moves) {
            timeline.scale.move(-event.movementX / timeline.scale.width);
            timeline.main.scrollTop -= event.movementY;
            timeline.redraw();
        } else {
            timeline.setRange(pressed.time, timeline.scale.time(event.offsetX));
        }
    }

    #hover(event) {
        this.timeline.panel.showHint(this.#entryUnder(event), event.clientX, event.clientY);
    }

    #zoomTo(entry) {
        if (entry)
            this.timeline.goTo(entry);
    }

    // A wheel scrolls the lanes; sideways, or with Shift, it moves; with Ctrl it zooms where the pointer is.
    #turn(event) {
        const { scale, main } = this.timeline;
        event.preventDefault();
        if (event.ctrlKey) {
            scale.zoom(1.002 ** event.deltaY, scale.time(event.offsetX));
        } else {
            const sideways = event.shiftKey ? event.deltaX || event.deltaY : event.deltaX;
            scale.move(sideways / scale.width);
            main.scrollTop += event.shiftKey ? 0 : event.deltaY;
        }
        this.timeline.redraw();
    }

    #listenToOverview() {
        const strip = document.getElementById("overview");
        const { scale, overview } = this.timeline;
        const follow = ({ offsetX, buttons }) => {
            if ((buttons & 1) === 0)
                return;
            const middle = (scale.from + scale.to) / 2;
            scale.move((overview.timeAt(offsetX, strip.clientWidth) - middle) / scale.span);
            this.timeline.redraw();
        };
        strip.onpointerdown = (event) => {
            strip.setPointerCapture(event.pointerId);
            follow(event);
        };
        strip.onpointermove = follow;
    }
}
