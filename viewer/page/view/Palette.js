// The colours of the style sheet, by name, as they are for light or dark, and those of classes.
class Palette {
    static names = ["back", "line", "grid", "ink", "quiet", "error", "state", "mark", "accent", "shade", "flow",
        "bar-saturation", "bar-lightness"];

    // All scopes of a class look alike, and those that come one after the other far from alike. Reds
    // are left to errors.
    constructor(trace) {
        const classes = new Set([...trace.scopeNames].map(Palette.#className));
        this.hues = new Map([...classes].map((name, i) => [name, 40 + i * 0.618 % 1 * 280]));
        this.read();
    }

    static #className(place) {
        return place.split(".")[0];
    }

    read() {
        const style = getComputedStyle(document.documentElement);
        for (const name of Palette.names)
            this[name] = style.getPropertyValue(`--${name}`);
        this.bars = new Map();
    }

    // Of a scope by the class in its name, of a band by its state.
    bar(look) {
        let colour = this.bars.get(look);
        if (!colour) {
            const hue = this.hues.get(Palette.#className(look)) ?? Palette.#hueOf(look);
            colour = `hsl(${hue} ${this["bar-saturation"]} ${this["bar-lightness"]})`;
            this.bars.set(look, colour);
        }
        return colour;
    }

    static #hueOf(text) {
        return [...text].reduce((hue, letter) => (hue * 31 + letter.codePointAt(0)) % 280, 7) + 40;
    }
}
