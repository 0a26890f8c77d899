import QtQuick

/// The time of all that moves in a view. It goes on 25 times a second: a processor draws these views, and more often
/// would cost it what no eye gains. Whoever moves by it is drawn together with the others.
Timer {
    id: beat

    property real elapsed: 0   ///< milliseconds
    readonly property real start: Date.now()

    /// Degrees of a turn that takes so many milliseconds.
    function turn(duration) {
        return 360 * (elapsed % duration) / duration;
    }

    /// From 0 to 1 within so many milliseconds and back within as many, slow at both ends.
    function swing(duration, delay = 0) {
        const share = Math.max(0, elapsed - delay) % (2 * duration) / duration;
        const part = share < 1 ? share : 2 - share;
        return part < 0.5 ? 2 * part * part : 1 - 2 * (1 - part) * (1 - part);
    }

    interval: 40
    running: Theme.moves
    repeat: true
    onTriggered: elapsed = Date.now() - start
}
