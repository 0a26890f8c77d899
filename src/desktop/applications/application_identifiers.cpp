#include "desktop/applications/application_identifiers.h"

#include <algorithm>
#include <string_view>

namespace tavrelon::desktop {

namespace {

struct KnownApplication {
    std::string_view name;
    std::string_view identifier;
};

constexpr std::string_view chrome = "com.google.Chrome";
constexpr std::string_view edge = "com.microsoft.edgemac";
constexpr std::string_view firefox = "org.mozilla.firefox";
constexpr std::string_view idea = "com.jetbrains.intellij";
constexpr std::string_view mail = "com.apple.mail";
constexpr std::string_view notion = "notion.id";
constexpr std::string_view obsidian = "md.obsidian";
constexpr std::string_view slack = "com.tinyspeck.slackmacgap";
constexpr std::string_view sublime = "com.sublimetext.4";
constexpr std::string_view visualStudioCode = "com.microsoft.VSCode";

/// Names in lower case. Free builds of the same product count as the product; any mail program is "the mail program".
constexpr KnownApplication knownApplications[] = {
    // Browsers
    {"google-chrome", chrome},
    {"google-chrome-stable", chrome},
    {"google-chrome-beta", chrome},
    {"google-chrome-unstable", chrome},
    {"com.google.chrome", chrome},
    {"chromium", chrome},
    {"chromium-browser", chrome},
    {"org.chromium.chromium", chrome},
    {"firefox", firefox},
    {"firefox-esr", firefox},
    {"firefox-beta", firefox},
    {"firefox-nightly", firefox},
    {"firefoxdeveloperedition", firefox},
    {"firefox-developer-edition", firefox},
    {"org.mozilla.firefox", firefox},
    {"firefox_firefox", firefox},
    {"microsoft-edge", edge},
    {"microsoft-edge-stable", edge},
    {"microsoft-edge-beta", edge},
    {"microsoft-edge-dev", edge},
    {"com.microsoft.edge", edge},
    // Editors
    {"code", visualStudioCode},
    {"code-insiders", visualStudioCode},
    {"code - insiders", visualStudioCode},
    {"code-oss", visualStudioCode},
    {"code - oss", visualStudioCode},
    {"codium", visualStudioCode},
    {"vscodium", visualStudioCode},
    {"com.visualstudio.code", visualStudioCode},
    {"com.visualstudio.code-oss", visualStudioCode},
    {"com.vscodium.codium", visualStudioCode},
    {"sublime_text", sublime},
    {"sublime-text", sublime},
    {"sublime_text_3", sublime},
    {"com.sublimetext.three", sublime},
    {"jetbrains-idea", idea},
    {"jetbrains-idea-ce", idea},
    {"jetbrains-idea-eap", idea},
    {"intellij-idea-community", idea},
    {"intellij-idea-ultimate", idea},
    {"com.jetbrains.intellij-idea-community", idea},
    {"com.jetbrains.intellij-idea-ultimate", idea},
    // Notes
    {"notion", notion},
    {"notion-app", notion},
    {"notion-desktop", notion},
    {"notion-snap", notion},
    {"obsidian", obsidian},
    {"md.obsidian.obsidian", obsidian},
    // Messages
    {"slack", slack},
    {"com.slack.slack", slack},
    // Mail
    {"thunderbird", mail},
    {"thunderbird-esr", mail},
    {"thunderbird-beta", mail},
    {"thunderbird_thunderbird", mail},
    {"org.mozilla.thunderbird", mail},
    {"net.thunderbird.thunderbird", mail},
    {"betterbird", mail},
    {"eu.betterbird.betterbird", mail},
    {"evolution", mail},
    {"org.gnome.evolution", mail},
    {"geary", mail},
    {"org.gnome.geary", mail},
    {"kmail", mail},
    {"kmail2", mail},
    {"org.kde.kmail2", mail},
    {"claws-mail", mail},
    {"org.claws_mail.claws-mail", mail},
    {"sylpheed", mail},
    {"balsa", mail},
    {"org.desktop.balsa", mail},
    {"trojita", mail},
    {"org.kde.trojita", mail},
    {"mailspring", mail},
    {"com.getmailspring.mailspring", mail},
    {"io.elementary.mail", mail},
    {"pantheon-mail", mail},
    {"proton-mail", mail},
    {"me.proton.mail", mail},
    {"tutanota-desktop", mail},
};

}  // namespace

std::optional<QString> knownIdentifier(const QString& name) {
    const auto wanted = name.toLower().toStdString();
    const auto* const found = std::ranges::find(knownApplications, wanted, &KnownApplication::name);
    if (found == std::ranges::end(knownApplications))
        return std::nullopt;
    return QString::fromUtf8(found->identifier.data(), static_cast<qsizetype>(found->identifier.size()));
}

std::optional<QString> bundleIdentifierOf(std::initializer_list<QString> names) {
    for (const auto& name : names) {
        if (auto known = knownIdentifier(name))
            return known;
    }
    const auto* const first = std::ranges::find_if(names, [](const QString& name) { return !name.isEmpty(); });
    return first == names.end() ? std::nullopt : std::optional(*first);
}

}  // namespace tavrelon::desktop
