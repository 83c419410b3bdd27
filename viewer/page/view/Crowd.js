// Bars of one height that follow each other closely. Those that touch are drawn as one if they look alike; if
// they do not, only as many pixels of them as nobody tells apart, in the colour of the first.
class Crowd {
    static blur = 6;

    constructor(pen, top, height) {
        this.pen = pen;
        this.top = top;
        this.height = height;
        this.colour = null;
        this.left = this.right = -Infinity;
    }

    add(left, width, colour) {
        const isBlurred = colour === this.colour || this.right - this.left < Crowd.blur;
        if (!isBlurred || left >= this.right + 1) {
            this.draw();
            this.colour = colour;
            this.left = left;
        }
        this.right = left + width;
    }

    // What has not been drawn yet.
    draw() {
        if (this.colour !== null) {
            this.pen.fillStyle = this.colour;
            this.pen.fillRect(this.left, this.top, this.right - this.left, this.height);
        }
    }
}
