// The canvas of that id, cleared, with a pen that counts in pixels of the page.
function beginDrawing(id) {
    const canvas = document.getElementById(id);
    const { clientWidth: width, clientHeight: height } = canvas;
    const ratio = window.devicePixelRatio;
    const [columns, lines] = [Math.round(width * ratio), Math.round(height * ratio)];
    if (canvas.width !== columns || canvas.height !== lines)
        Object.assign(canvas, { width: columns, height: lines });
    const pen = canvas.getContext("2d");
    pen.reset();
    pen.scale(ratio, ratio);
    pen.font = "11px system-ui, sans-serif";
    pen.textBaseline = "middle";
    return { pen, width, height };
}

// As much of a text as fits, with an ellipsis for the rest, and nothing where hardly a letter would.
function drawLabel(pen, text, x, y, width) {
    const widthOf = (label) => pen.measureText(label).width;
    let label = text.slice(0, Math.ceil(width / 2)); // no letter is narrower
    let length = Math.floor(label.length * width / widthOf(label));
    while (length < text.length && length > 3 && widthOf(label = `${text.slice(0, length)}…`) > width)
        --length;
    if (length > 3)
        pen.fillText(label, x, y);
}
