import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The page of general settings.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts

    MessageLine { text: page.model.faultySettings ? page.texts.faulty + page.model.faultySettings : "" }
    Loader {
        active: page.model.firstSteps.isWanted
        visible: active
        width: parent.width
        sourceComponent: FirstStepsCard { steps: page.model.firstSteps }
    }
    GlassCard {
        width: parent.width

        Item {
            width: parent.width
            height: Math.max(header.height, choice.height)

            SectionHeader {
                id: header
                width: parent.width - choice.width - 16
                anchors.verticalCenter: parent.verticalCenter
                title: page.texts.vision
                subtitle: page.texts.visionHint
            }
            SegmentedControl {
                id: choice
                width: 220
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                name: page.texts.vision
                options: [
                    { value: "speed", label: page.texts.speed },
                    { value: "quality", label: page.texts.quality }
                ]
                current: page.model.visionModelPreference
                onChosen: value => page.model.visionModelPreference = value
            }
        }
        Row {
            visible: page.model.visionModelPreference === "speed"
            spacing: 7
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "exclamationmark.triangle.fill"
                size: 14
                color: Look.warning
            }
            Text {
                text: page.texts.speedWarning
                color: Look.warning
                font { family: Look.fontFamily; pixelSize: Look.smallSize }
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
    SettingCardToggle {
        title: page.texts.think
        subtitle: page.texts.thinkHint
        icon: "brain.head.profile"
        iconColor: Look.cyan
        isOn: page.model.isThinkEnabled
        onToggled: isOn => page.model.isThinkEnabled = isOn
    }
    SettingCardToggle {
        title: page.texts.memory
        subtitle: page.texts.memoryHint
        icon: "plus.circle.fill"
        isOn: page.model.isLocalLearningEnabled
        onToggled: isOn => page.model.isLocalLearningEnabled = isOn
    }
    TaughtNotice { taught: page.model.taught }
    GlassCard {
        width: parent.width

        Item {
            width: parent.width
            height: Math.max(learned.height, forget.height)

            SectionHeader {
                id: learned
                width: parent.width - forget.width - 16
                anchors.verticalCenter: parent.verticalCenter
                title: page.texts.learned
                subtitle: page.model.taught.isTaught
                    ? [page.model.taught.origin, page.model.learnedAt].filter(part => part).join(" · ")
                    : page.model.hasForgotten ? page.texts.forgotten : page.texts.forgetHint
            }
            GlassButton {
                id: forget
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                icon: "trash"
                text: page.texts.forget
                onTriggered: page.model.forget()
            }
        }
        LongText {
            visible: page.model.taught.isTaught
            pieces: page.model.learnedPieces
            name: page.texts.learned
        }
    }
    SettingCardToggle {
        title: page.texts.share
        subtitle: page.texts.shareHint
        icon: "arrow.right.circle.fill"
        iconColor: Look.blue
        isOn: page.model.sharesImprovements
        onToggled: isOn => page.model.sharesImprovements = isOn
    }
    SettingCardToggle {
        title: page.texts.pictures
        subtitle: page.texts.picturesHint
        icon: "film.fill"
        iconColor: Look.azure
        isOn: page.model.drawsPictures
        onToggled: isOn => page.model.drawsPictures = isOn
    }
    SettingCardToggle {
        visible: page.model.drawsPictures
        title: page.texts.enhancement
        subtitle: page.texts.enhancementHint
        icon: "sparkles"
        iconColor: Look.azure
        isOn: page.model.enhancesImagePrompts
        onToggled: isOn => page.model.enhancesImagePrompts = isOn
    }
    SettingCardToggle {
        title: page.texts.clipboard
        subtitle: page.texts.clipboardHint
        icon: "arrow.uturn.backward"
        iconColor: Look.azure
        isOn: page.model.keepsClipboard
        onToggled: isOn => page.model.keepsClipboard = isOn
    }
}
