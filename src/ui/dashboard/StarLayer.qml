import QtQuick

/// One layer of stars, for a sky to draw. `stars` holds x, y, diameter and opacity of each; x and y are fractions of the
/// sky's size.
QtObject {
    property var stars: []

    function draw(context, width, height, opacity) {
        for (let i = 0; i + 3 < stars.length; i += 4) {
            context.fillStyle = Look.white(stars[i + 3] * opacity);
            context.beginPath();
            context.arc(stars[i] * width, stars[i + 1] * height, stars[i + 2] / 2, 0, 2 * Math.PI);
            context.fill();
        }
    }
}
