import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The user's own gateway in the place of the built-in one.
Column {
    id: section

    required property QtObject model
    required property color tint
    readonly property var texts: model.texts

    spacing: Look.gap

    ProviderHead {
        imageName: "PollinationsLogo"
        title: "Pollinations"
        hint: section.texts.pollinationsHint
        tint: section.tint
    }
    SettingCardToggle {
        title: section.texts.enablePollinations
        subtitle: section.texts.enablePollinationsSubtitle
        icon: "key.fill"
        iconColor: section.tint
        isOn: section.model.enableCustomPollinations
        onToggled: isOn => section.model.enableCustomPollinations = isOn
    }
    SettingCardToggle {
        visible: section.model.enableCustomPollinations
        title: section.model.isGatewayLocal ? section.texts.staysHere : section.texts.staysWithGateway
        subtitle: section.texts.staysWithGatewaySubtitle
        icon: "shield.fill"
        iconColor: section.tint
        isOn: section.model.staysWithGateway
        onToggled: isOn => section.model.staysWithGateway = isOn
    }
    GlassCard {
        width: parent.width
        visible: section.model.enableCustomPollinations
        spacing: 12

        LabeledField {
            label: section.texts.baseURL
            placeholder: section.model.defaultPollinationsBaseURL
            text: section.model.pollinationsBaseURL
            onEdited: text => section.model.pollinationsBaseURL = text
        }
        MessageLine { text: section.model.baseURLMissing ? section.texts.baseURLMissing : "" }
        LabeledField {
            label: section.texts.imageModel
            placeholder: "zimage"
            text: section.model.pollinationsImageModel
            onEdited: text => section.model.pollinationsImageModel = text
        }
        MessageLine { text: section.model.imageModelMissing ? section.texts.imageModelMissing : "" }
        LabeledField {
            label: section.texts.visionModel
            placeholder: "openai.pollinations"
            text: section.model.pollinationsVisionModel
            onEdited: text => section.model.pollinationsVisionModel = text
        }
        MessageLine { text: section.model.visionModelMissing ? section.texts.visionModelMissing : "" }
        LabeledSecureField {
            label: section.texts.optionalKey
            text: section.model.pollinationsApiKey
            onEdited: text => section.model.pollinationsApiKey = text
        }
        MessageLine { text: section.texts[section.model.pollinationsKeyNote] ?? "" }
        LinkLine {
            text: section.texts.getPollinationsKey
            link: section.model.pollinationsKeyPortal
            onOpened: section.model.openPollinationsKeyPortal()
        }
    }
}
