import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The page of permissions.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts
    readonly property var cards: model.cards

    title: texts.title

    Connections {
        target: page.Window.window
        function onActiveChanged() {
            // The user may come back from the desktop's own settings.
            if (page.Window.active)
                page.model.refresh();
        }
    }

    Repeater {
        model: page.cards.length
        PermissionCard {
            required property int index
            readonly property var card: page.cards[index]
            width: parent.width
            title: card.title
            description: card.description
            icon: card.icon
            isGranted: card.isGranted
            texts: page.texts
            onAllow: page.model.allow(index)
        }
    }
}
