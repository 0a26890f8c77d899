import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// A text of any length that can be selected, as high as it is up to a limit, beyond which it scrolls. It comes in
/// `pieces`, so that only what is in sight is laid out.
Item {
    id: longText

    property var pieces: []
    property real heightLimit: 220
    property string name               ///< for assistive technology

    width: parent ? parent.width : implicitWidth
    height: Math.min(list.contentHeight, heightLimit)

    ListView {
        id: list
        anchors.fill: parent
        clip: interactive
        activeFocusOnTab: interactive  // to be scrolled by keys
        keyNavigationEnabled: false
        Accessible.role: Accessible.List
        Accessible.name: longText.name
        Keys.onPressed: event => {
            const step = ({
                [Qt.Key_Up]: -40, [Qt.Key_Down]: 40, [Qt.Key_PageUp]: 40 - height, [Qt.Key_PageDown]: height - 40
            })[event.key];
            if (step === undefined || !interactive)
                return;
            contentY = Math.max(originY, Math.min(contentY + step, originY + contentHeight - height));
            event.accepted = true;
        }
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        model: longText.pieces
        delegate: TextEdit {
            required property string modelData

            width: list.width - 14
            text: modelData
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            readOnly: true
            selectByMouse: true
            color: Look.primary
            selectionColor: Look.faded(Look.blue, 0.7)
            selectedTextColor: "white"
            font { family: Look.fontFamily; pixelSize: Look.bodySize }
            Accessible.role: Accessible.StaticText
            Accessible.name: longText.name
            Accessible.description: text
        }
    }
    FocusRing { target: list; anchors.fill: list; anchors.margins: -3; corner: 8 }
    ScrollIndicator {
        flickable: list
        anchors.rightMargin: 0
    }
}
