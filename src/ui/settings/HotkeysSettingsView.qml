import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The page of hotkeys.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts

    title: texts.title
    actions: GlassButton {
        icon: "arrow.clockwise"
        text: page.texts.restore
        onTriggered: page.model.restoreDefaults()
    }

    SettingCardToggle {
        title: page.texts.master
        subtitle: page.texts.masterHint
        icon: "keyboard.fill"
        isOn: page.model.hotkeysEnabled
        trailing: HotkeysStatusPill {
            isEnabled: page.model.hotkeysEnabled
            texts: page.texts
        }
        onToggled: isOn => page.model.hotkeysEnabled = isOn
    }
    Repeater {
        model: page.model.rowCount
        HotkeyCardRow {
            width: parent.width
            hotkeys: page.model
        }
    }
    GlassCard {
        width: parent.width
        visible: page.model.speechLanguages.length > 0

        SectionHeader {
            title: page.texts.speech
            subtitle: page.texts.speechHint
        }
        SegmentedControl {
            width: Math.min(implicitWidth, parent.width)
            name: page.texts.speech
            options: page.model.speechLanguages
            current: page.model.speechLocale
            onChosen: locale => page.model.setSpeechLocale(locale)
        }
    }
}
