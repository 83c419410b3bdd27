// The side panel's width: dragged, or by the arrow keys, or folded away.
class SidePanel {
    static least = 200;

    constructor() {
        this.edge = document.getElementById("edge");
        this.button = document.getElementById("fold");
        this.button.onclick = () => this.toggle();
        this.edge.onpointerdown = ({ pointerId }) => this.edge.setPointerCapture(pointerId);
        this.edge.onpointermove = ({ buttons, clientX }) => (buttons & 1) === 0 || this.resize(innerWidth - clientX);
        this.edge.onkeydown = (event) => this.#obeyKey(event);
        this.resize(330);
    }

    toggle() {
        const isFolded = document.body.classList.toggle("folded");
        this.button.setAttribute("aria-expanded", !isFolded);
    }

    resize(width) {
        this.width = Math.max(SidePanel.least, Math.min(width, innerWidth * 0.7));
        document.body.style.setProperty("--side", `${this.width}px`);
        this.edge.setAttribute("aria-valuenow", Math.round(this.width));
    }

    #obeyKey(event) {
        const step = { ArrowLeft: 30, ArrowRight: -30 }[event.key];
        if (!step)
            return;
        event.preventDefault();
        event.stopPropagation();
        this.resize(this.width + step);
    }
}
