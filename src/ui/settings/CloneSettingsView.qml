import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The page that learns how a person writes from a link or a file, and shows what was learned.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts
    readonly property bool isLearning: model.isLearningFromLink || model.isLearningFromFile

    title: texts.title
    subtitle: texts.subtitle

    GlassCard {
        width: parent.width

        SectionHeader { title: page.texts.link }
        Row {
            width: parent.width
            spacing: 8

            GlassTextField {
                width: parent.width - learnLink.width - parent.spacing
                name: page.texts.link
                placeholder: page.texts.linkPlaceholder
                text: page.model.profileURLInput
                onEdited: text => page.model.profileURLInput = text
                Keys.onReturnPressed: page.model.learnFromLink()
                Keys.onEnterPressed: page.model.learnFromLink()
            }
            LearnButton {
                id: learnLink
                text: page.texts.learnFromLink
                busyText: page.texts.learning
                icon: "globe"
                isBusy: page.model.isLearningFromLink
                isAvailable: !page.isLearning || isBusy
                onTriggered: page.model.learnFromLink()
            }
        }
    }
    GlassCard {
        width: parent.width

        SectionHeader { title: page.texts.file; subtitle: page.texts.fileHint }
        Row {
            width: parent.width
            spacing: 8

            Item {
                width: parent.width - choose.width - learnFile.width - 2 * parent.spacing
                height: Look.fieldHeight

                GlassFieldBackground { anchors.fill: parent }
                Symbol {
                    id: fileSymbol
                    anchors { left: parent.left; leftMargin: 11; verticalCenter: parent.verticalCenter }
                    name: "doc.fill"
                    size: 15
                    color: page.model.selectedFileName ? Look.accent : Look.tertiary
                }
                Text {
                    anchors { left: fileSymbol.right; leftMargin: 8; right: parent.right; rightMargin: 11; verticalCenter: parent.verticalCenter }
                    text: page.model.selectedFileName ? page.model.selectedFileName : page.texts.noFile
                    textFormat: Text.PlainText
                    color: page.model.selectedFileName ? Look.primary : Look.tertiary
                    elide: Text.ElideMiddle
                    font { family: Look.fontFamily; pixelSize: Look.bodySize }
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }
            GlassButton {
                id: choose
                icon: "doc.fill"
                text: page.texts.chooseFile
                isAvailable: !page.model.isImportingFile
                onTriggered: page.model.chooseFile()
            }
            LearnButton {
                id: learnFile
                text: page.texts.learnFromFile
                busyText: page.texts.learning
                icon: "tray.and.arrow.up.fill"
                isBusy: page.model.isLearningFromFile
                isAvailable: !page.isLearning || isBusy
                onTriggered: page.model.learnFromFile()
            }
        }
    }
    MessageLine { text: page.model.statusMessage; icon: "checkmark.circle.fill"; tint: Look.accent }
    MessageLine { text: page.model.errorMessage }
    TaughtNotice { taught: page.model.taught }
    CloneResultCard {
        title: page.texts.systemPrompt
        emptyText: page.texts.noSystemPrompt
        pieces: page.model.systemPromptPieces
    }
    CloneResultCard {
        title: page.texts.languageStyle
        emptyText: page.texts.noLanguageStyle
        pieces: page.model.languageStylePieces
    }
    Item {
        visible: page.model.updatedAt || page.model.canClear
        width: parent.width
        height: Look.fieldHeight

        Text {
            visible: page.model.updatedAt
            anchors {
                left: parent.left
                right: clear.left; rightMargin: 12
                verticalCenter: parent.verticalCenter
            }
            text: [page.texts.updated + " " + page.model.updatedAt, page.model.taught.origin].filter(part => part).join(" · ")
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Look.secondary
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        GlassButton {
            id: clear
            visible: page.model.canClear
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            icon: "trash"
            text: page.texts.clear
            onTriggered: page.model.clear()
        }
    }
}
