#include "desktop/linux/process/settings_panes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QStandardPaths>
#include <array>

#include "desktop/linux/process/process_launcher.h"

namespace tavrelon::desktop {

namespace {

struct PaneCommand {
    SettingsPane pane;
    const char* desktop;  ///< empty where any desktop may have the program
    const char* command;
};

constexpr std::array<PaneCommand, 13> commands{{
    {SettingsPane::Accessibility, "GNOME", "gnome-control-center universal-access"},
    {SettingsPane::Accessibility, "KDE", "systemsettings kcm_access"},
    {SettingsPane::Accessibility, "XFCE", "xfce4-accessibility-settings"},
    {SettingsPane::Accessibility, "MATE", "mate-at-properties"},
    {SettingsPane::Accessibility, "X-Cinnamon", "cinnamon-settings universal-access"},
    {SettingsPane::ScreenCapture, "GNOME", "gnome-control-center screen"},
    {SettingsPane::ScreenCapture, "KDE", "systemsettings kcm_app-permissions"},
    {SettingsPane::Microphone, "GNOME", "gnome-control-center sound"},
    {SettingsPane::Microphone, "KDE", "systemsettings kcm_pulseaudio"},
    {SettingsPane::Microphone, "MATE", "mate-volume-control"},
    {SettingsPane::Microphone, "X-Cinnamon", "cinnamon-settings sound"},
    {SettingsPane::Microphone, "", "pavucontrol --tab=4"},
    {SettingsPane::Microphone, "", "pavucontrol-qt --tab=3"},
}};

}  // namespace

std::optional<QStringList> settingsCommand(SettingsPane pane, const QStringList& desktops,
                                           const std::function<bool(const QString& program)>& exists) {
    for (const auto& each : commands) {
        const QLatin1StringView desktop(each.desktop);
        if (each.pane != pane || (!desktop.isEmpty() && !desktops.contains(desktop)))
            continue;
        auto words = QString::fromLatin1(each.command).split(u' ');
        if (exists(words.first()))
            return words;
    }
    return std::nullopt;
}

bool openSettingsPane(SettingsPane pane) {
    const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    const auto command = settingsCommand(
        pane, desktops, [](const QString& program) { return !QStandardPaths::findExecutable(program).isEmpty(); });
    return command && startProgram(command->first(), command->mid(1));
}

void switchAccessibilityOn() {
    auto set = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                              QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
    set.setArguments(
        {QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled"), QVariant::fromValue(QDBusVariant(true))});
    QDBusConnection::sessionBus().asyncCall(set);
}

}  // namespace tavrelon::desktop
