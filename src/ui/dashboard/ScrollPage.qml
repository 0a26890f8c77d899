import QtQuick

/// A page with its title over a column that scrolls. What stands in `actions` goes to the right of the title.
Item {
    id: page

    property string title
    property string subtitle
    property alias spacing: column.spacing
    property alias actions: actionRow.data
    default property alias content: column.data

    // What has no stop of the Tab key below the last one comes into sight too.
    Keys.onPressed: event => {
        const page = flick.height - 40;
        const step = ({ [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page })[event.key];
        if (step === undefined)
            return;
        flick.contentY = Math.max(0, Math.min(flick.contentY + step, flick.contentHeight - flick.height));
        event.accepted = true;
    }

    function reveal(item) {
        // A text follows its own caret.
        if (!item || !page.visible || item instanceof TextEdit)
            return;
        let ancestor = item;
        while (ancestor && ancestor !== column)
            ancestor = ancestor.parent;
        if (!ancestor)
            return;
        const top = item.mapToItem(column, 0, 0).y + column.y - 12;
        const bottom = top + item.height + 24;
        const limit = Math.max(0, flick.contentHeight - flick.height);
        if (top < flick.contentY)
            flick.contentY = Math.max(0, Math.min(top, limit));
        else if (bottom > flick.contentY + flick.height)
            flick.contentY = Math.max(0, Math.min(bottom - flick.height, limit));
    }

    Connections {
        target: page.Window.window
        function onActiveFocusItemChanged() { page.reveal(page.Window.window.activeFocusItem); }
    }

    TapHandler { onTapped: flick.forceActiveFocus(Qt.MouseFocusReason) }

    Flickable {
        id: flick
        anchors.fill: parent
        clip: true
        contentWidth: width
        contentHeight: column.y + column.height + Look.margin
        boundsBehavior: Flickable.StopAtBounds

        SectionHeader {
            id: header

            readonly property real rowTop: Look.margin - 6
            readonly property real rowHeight: Math.max(height, actionRow.height)

            x: Look.margin
            y: rowTop + (rowHeight - height) / 2
            width: flick.width - 2 * Look.margin - actionRow.width - (actionRow.width ? 12 : 0)
            visible: page.title
            level: 1
            title: page.title
            subtitle: page.subtitle
        }
        Row {
            id: actionRow
            x: flick.width - Look.margin - width
            y: header.rowTop + (header.rowHeight - height) / 2
            spacing: 8
        }
        Column {
            id: column
            x: Look.margin
            y: header.visible ? header.rowTop + header.rowHeight + 18 : Look.margin
            width: flick.width - 2 * Look.margin
            spacing: Look.gap
        }
    }
    ScrollIndicator { flickable: flick }
}
