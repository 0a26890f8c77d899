import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// One piece of a message: the first has the label and the upper corners, the last the lower ones. A picture stands
/// alone in its piece; if it cannot be drawn after all, the text stands in for it.
Item {
    id: bubble

    property string text
    property string role               ///< "user", "assistant" or "edited"
    property string label
    property bool isFirst: true
    property bool isLast: true
    property url imageSource
    property size imagePixels

    readonly property bool isWhole: isFirst && isLast
    readonly property bool isTrailing: role === "user"
    readonly property bool hasImage: imageSource.toString() !== "" && picture.status !== Image.Error
    readonly property color tint: ({ user: Look.accent, assistant: Look.blue, edited: Look.white(1) })[role]
    readonly property int inset: 8
    readonly property int corner: 10
    readonly property real widest: Math.min(420, width)
    readonly property real pictureWidth: Math.min(360, widest - 2 * inset, imagePixels.width)
    readonly property real pictureHeight: imagePixels.width > 0 ? Math.min(720, pictureWidth * imagePixels.height / imagePixels.width) : 0

    height: heading.height + frame.height
    Accessible.role: Accessible.StaticText
    Accessible.name: label
    Accessible.description: text

    Text {
        id: heading
        visible: bubble.isFirst
        height: visible ? implicitHeight + 4 : 0
        anchors { left: bubble.isTrailing ? undefined : frame.left; right: bubble.isTrailing ? frame.right : undefined }
        leftPadding: 2
        rightPadding: 2
        text: bubble.label
        color: Look.secondary
        font { family: Look.fontFamily; pixelSize: Look.smallSize; weight: Font.DemiBold }
    }
    Item {
        id: frame
        anchors { top: heading.bottom; left: bubble.isTrailing ? undefined : parent.left; right: bubble.isTrailing ? parent.right : undefined }
        width: !bubble.isWhole ? bubble.widest
             : bubble.hasImage ? bubble.pictureWidth + 2 * bubble.inset
             : Math.min(bubble.widest, Math.ceil(message.implicitWidth) + 2 * bubble.inset)
        height: content.height + (bubble.isFirst ? bubble.inset : 0) + (bubble.isLast ? bubble.inset : 0)
        clip: !bubble.isWhole

        Rectangle {
            width: parent.width
            y: bubble.isFirst ? 0 : -bubble.corner
            height: parent.height + (bubble.isFirst ? 0 : bubble.corner) + (bubble.isLast ? 0 : bubble.corner)
            radius: bubble.corner
            color: Theme.mixed(Look.night, bubble.tint, bubble.role === "edited" ? 0.12 : 0.22)
            border.width: 1
            border.color: Theme.mixed(Look.night, bubble.tint, bubble.role === "edited" ? 0.26 : 0.45)
        }
        Item {
            id: content
            x: bubble.inset
            y: bubble.isFirst ? bubble.inset : 0
            width: parent.width - 2 * bubble.inset
            height: bubble.hasImage ? bubble.pictureHeight : message.height

            TextEdit {
                id: message
                visible: !bubble.hasImage
                width: parent.width
                text: visible ? bubble.text : ""
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                readOnly: true
                selectByMouse: true
                color: Look.primary
                selectionColor: Look.faded(Look.azure, 0.7)
                selectedTextColor: "white"
                font { family: Look.fontFamily; pixelSize: Look.bodySize }
            }
            Image {
                id: picture
                visible: bubble.hasImage
                width: bubble.pictureWidth
                height: bubble.pictureHeight
                source: bubble.imageSource
                sourceSize.width: Math.ceil(bubble.pictureWidth * Screen.devicePixelRatio)
                asynchronous: true
                cache: false
                fillMode: Image.PreserveAspectFit
            }
        }
    }
}
