import QtQuick

/// Picks the face for what is going on. A hidden view has no face, so that nothing moves in it.
Item {
    id: view

    required property QtObject model
    readonly property bool live: Window.visibility !== Window.Hidden
    readonly property rect maskRect: face.item ? face.item.maskRect : Qt.rect(0, 0, width, height)
    readonly property real maskRadius: face.item ? face.item.maskRadius : 0

    function loadFace() {
        face.setSource(model.face + ".qml", { hud: model });
    }

    Component.onCompleted: loadFace()
    Connections {
        target: view.model
        function onFaceChanged() { view.loadFace(); }
    }

    Loader {
        id: face
        anchors.fill: parent
        active: view.live
    }
}
