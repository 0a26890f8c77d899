import QtQuick

/// One layer of stars. `stars` holds x, y, diameter and opacity of each; x and y are fractions of the layer's size.
Canvas {
    id: layer

    property var stars: []

    renderStrategy: Canvas.Immediate
    onPaint: {
        const context = getContext("2d");
        context.clearRect(0, 0, width, height);
        for (let i = 0; i + 3 < stars.length; i += 4) {
            context.fillStyle = Look.white(stars[i + 3]);
            context.beginPath();
            context.arc(stars[i] * width, stars[i + 1] * height, stars[i + 2] / 2, 0, 2 * Math.PI);
            context.fill();
        }
    }
    onStarsChanged: requestPaint()
    onWidthChanged: requestPaint()
    onHeightChanged: requestPaint()
}
