// The canvas of that id, cleared, with a pen that counts in pixels of the page.
function beginDrawing(id) {
    const canvas = document.getElementById(id);
    const { clientWidth: width, clientHeight: height } = canvas;
    const ratio = window.devicePixelRatio;
    canvas.width = width * ratio;
    canvas.height = height * ratio;
    const pen = canvas.getContext("2d");
    pen.scale(ratio, ratio);
    pen.font = "11px system-ui, sans-serif";
    pen.textBaseline = "middle";
    return { pen, width, height };
}

// The colours of the style sheet, by name, as they are for light or dark.
function themeColours() {
    const style = getComputedStyle(document.documentElement);
    const names = ["back", "line", "grid", "ink", "quiet", "error", "state", "mark", "accent", "shade",
        "bar-saturation", "bar-lightness"];
    return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`)]));
}
