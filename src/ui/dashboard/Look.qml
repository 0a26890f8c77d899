pragma Singleton

import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The dashboard's palette, type and measures.
QtObject {
    readonly property color accent: Qt.rgba(0.35, 0.9, 0.7, 1)
    readonly property color cyan: Qt.rgba(0.35, 0.86, 0.95, 1)
    readonly property color blue: Qt.rgba(0.28, 0.64, 0.92, 1)
    readonly property color azure: Qt.rgba(0, 0.725, 0.996, 1)
    readonly property color warning: Qt.rgba(0.96, 0.55, 0.55, 1)
    readonly property color accentInk: "#06231a"

    readonly property color primary: white(0.96)
    readonly property color secondary: white(0.72)
    readonly property color tertiary: white(0.5)
    readonly property color night: "#0a1224"

    readonly property int gap: 12        ///< between cards
    readonly property int padding: 16    ///< inside a card
    readonly property int margin: 28     ///< around a page
    readonly property int corner: 14     ///< of a card
    readonly property int fieldCorner: 9
    readonly property int fieldHeight: 34
    readonly property int titleSize: 16
    readonly property int bodySize: 14
    readonly property int smallSize: 12
    readonly property int keySize: 17    ///< of the signs on a key cap, some of which are small in their square
    readonly property int quick: Theme.moves ? 120 : 0   ///< milliseconds of a change of colour

    readonly property var installedFamilies: Qt.fontFamilies()
    readonly property string fontFamily: firstInstalled(["Avenir Next", "Noto Sans CJK SC", "Source Han Sans SC"])
    readonly property string keyFamily: firstInstalled(["DejaVu Sans"])   ///< has the symbols of all keys

    function firstInstalled(families) {
        return families.find(family => installedFamilies.includes(family)) ?? Qt.application.font.family;
    }

    function white(opacity) {
        return Qt.rgba(1, 1, 1, opacity);
    }

    function faded(color, opacity) {
        return Qt.rgba(color.r, color.g, color.b, opacity);
    }
}
