import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The page of providers: a tile for each, and the settings of the one on view.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts
    readonly property var tints: ({ pollinations: Look.warning, ollama: Look.cyan, nvidia: Theme.green })

    title: texts.title
    subtitle: texts.subtitle

    Row {
        width: parent.width
        spacing: Look.gap
        Accessible.role: Accessible.PageTabList
        Accessible.name: page.texts.title

        ProviderIconButton {
            width: (parent.width - 2 * parent.spacing) / 3
            imageName: "PollinationsLogo"
            title: "Pollinations"
            tint: page.tints.pollinations
            isSelected: page.model.selection === "pollinations"
            isEnabled: page.model.enableCustomPollinations
            onTriggered: page.model.selection = "pollinations"
        }
        ProviderIconButton {
            width: (parent.width - 2 * parent.spacing) / 3
            imageName: "OllamaLogo"
            title: "Ollama"
            tint: page.tints.ollama
            isSelected: page.model.selection === "ollama"
            isEnabled: page.model.enableOllamaVision
            onTriggered: page.model.selection = "ollama"
        }
        ProviderIconButton {
            width: (parent.width - 2 * parent.spacing) / 3
            imageName: "NvidiaLogo"
            title: "NVIDIA"
            tint: page.tints.nvidia
            isSelected: page.model.selection === "nvidia"
            isEnabled: page.model.enableNvidiaLocal
            onTriggered: page.model.selection = "nvidia"
        }
    }
    FoundServersCard { visible: found.isNothingChosen && found.servers.length > 0; found: page.model.found }
    TaughtNotice { taught: page.model.taught }
    Loader {
        width: parent.width
        sourceComponent: ({ pollinations: pollinationsSection, ollama: ollamaSection, nvidia: nvidiaSection })[page.model.selection]
    }

    ServiceTrialCard { trial: page.model.trial; texts: page.texts }

    Component {
        id: pollinationsSection
        PollinationsSettingsSection { model: page.model; tint: page.tints.pollinations }
    }
    Component {
        id: ollamaSection
        OllamaSettingsSection { model: page.model; tint: page.tints.ollama }
    }
    Component {
        id: nvidiaSection
        NvidiaSettingsSection { model: page.model; tint: page.tints.nvidia }
    }
}
