import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// How Ollama is reached, in the cloud or on this machine.
Column {
    id: section

    required property QtObject model
    required property color tint
    readonly property var texts: model.texts

    spacing: Look.gap

    ProviderHead {
        imageName: "OllamaLogo"
        title: "Ollama"
        hint: section.texts.ollamaHint
        tint: section.tint
    }
    SettingCardToggle {
        title: section.texts.enableOllama
        subtitle: section.texts.enableOllamaSubtitle
        icon: "eye"
        iconColor: section.tint
        isOn: section.model.enableOllamaVision
        onToggled: isOn => section.model.enableOllamaVision = isOn
    }
    GlassCard {
        width: parent.width
        visible: section.model.enableOllamaVision
        spacing: 14

        Item {
            width: parent.width
            height: Math.max(modeHeader.height, mode.height)

            SectionHeader {
                id: modeHeader
                width: parent.width - mode.width - 16
                anchors.verticalCenter: parent.verticalCenter
                title: section.texts.mode
                subtitle: section.texts.modeHint
            }
            SegmentedControl {
                id: mode
                width: 220
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                name: section.texts.mode
                options: [
                    { value: "cloud", label: section.texts.cloud },
                    { value: "local", label: section.texts.local }
                ]
                current: section.model.ollamaMode
                onChosen: value => section.model.ollamaMode = value
            }
        }
        Loader {
            width: parent.width
            active: section.model.enableOllamaVision
            sourceComponent: section.model.ollamaMode === "cloud" ? cloudControls : localControls
        }
    }

    Component {
        id: cloudControls

        Column {
            readonly property QtObject models: section.model.cloudModels

            spacing: 12
            Component.onCompleted: models.load()

            LabeledSecureField {
                label: section.texts.requiredKey
                placeholder: "ollama-..."
                text: section.model.ollamaCloudApiKey
                onEdited: text => section.model.ollamaCloudApiKey = text
            }
            Column {
                width: parent.width
                spacing: 6

                Text {
                    text: section.texts.model
                    color: Look.secondary
                    font { family: Look.fontFamily; pixelSize: Look.smallSize; weight: Font.DemiBold }
                }
                Row {
                    width: parent.width
                    spacing: 8

                    CloudModelPicker {
                        width: parent.width - refresh.width - parent.spacing
                        models: parent.parent.parent.models
                        texts: section.texts
                        current: section.model.ollamaCloudModel
                        onChosen: name => section.model.ollamaCloudModel = name
                    }
                    PressArea {
                        id: refresh
                        width: Look.fieldHeight
                        height: Look.fieldHeight
                        name: section.texts.refreshModels
                        toolTip: section.texts.refreshModels
                        onTriggered: section.model.cloudModels.refresh()

                        GlassFieldBackground { anchors.fill: parent; isActive: refresh.hovered }
                        Symbol {
                            anchors.centerIn: parent
                            visible: !section.model.cloudModels.isLoading
                            name: "arrow.clockwise"
                            size: 15
                            color: refresh.hovered ? Look.primary : Look.secondary
                        }
                        Spinner {
                            anchors.centerIn: parent
                            visible: section.model.cloudModels.isLoading
                        }
                    }
                }
            }
            MessageLine { text: section.model.cloudModels.error }
            MessageLine { text: section.model.cloudKeyMissing ? section.texts.cloudKeyMissing : "" }
            MessageLine { text: section.model.cloudModelMissing ? section.texts.cloudModelMissing : "" }
        }
    }

    Component {
        id: localControls

        Column {
            spacing: 12

            LabeledField {
                label: section.texts.model
                placeholder: "genmini-3-flash-preview"
                text: section.model.ollamaLocalModel
                onEdited: text => section.model.ollamaLocalModel = text
            }
            LabeledField {
                label: section.texts.endpoint
                placeholder: section.model.defaultOllamaEndpoint
                text: section.model.ollamaLocalEndpoint
                onEdited: text => section.model.ollamaLocalEndpoint = text
            }
            LabeledSecureField {
                label: section.texts.optionalKey
                placeholder: "optional"
                text: section.model.ollamaLocalApiKey
                onEdited: text => section.model.ollamaLocalApiKey = text
            }
            MessageLine { text: section.texts[section.model.ollamaLocalKeyNote] ?? "" }
        }
    }
}
