import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// How NVIDIA is reached.
Column {
    id: section

    required property QtObject model
    required property color tint
    readonly property var texts: model.texts

    spacing: Look.gap

    ProviderHead {
        imageName: "NvidiaLogo"
        title: "NVIDIA"
        hint: section.texts.nvidiaHint
        tint: section.tint
    }
    SettingCardToggle {
        title: section.texts.enableNvidia
        subtitle: section.texts.enableNvidiaSubtitle
        icon: "memorychip.fill"
        iconColor: section.tint
        isOn: section.model.enableNvidiaLocal
        onToggled: isOn => section.model.enableNvidiaLocal = isOn
    }
    GlassCard {
        width: parent.width
        visible: section.model.enableNvidiaLocal

        SectionHeader { title: section.texts.localApi }
        LabeledSecureField {
            label: section.texts.requiredKey
            placeholder: "nvapi-..."
            text: section.model.nvidiaApiKey
            onEdited: text => section.model.nvidiaApiKey = text
        }
        MessageLine { text: section.model.nvidiaKeyMissing ? section.texts.nvidiaKeyMissing : "" }
        LinkLine {
            text: section.texts.getNvidiaKey
            link: section.model.nvidiaKeyPortal
            onOpened: section.model.openNvidiaKeyPortal()
        }
    }
}
