#include "desktop/linux/process/command_line.h"

#include <algorithm>
#include <utility>

namespace tavrelon::desktop {

namespace {

constexpr std::pair<QLatin1StringView, StartMode> modes[] = {
    {QLatin1StringView("--background"), StartMode::Background},
    {QLatin1StringView("--help"), StartMode::Help},
    {QLatin1StringView("-h"), StartMode::Help},
    {QLatin1StringView("--version"), StartMode::Version},
};

}  // namespace

std::expected<StartMode, QString> startModeFrom(const QStringList& arguments) {
    auto mode = StartMode::Dashboard;
    for (const auto& argument : arguments) {
        const auto* known = std::ranges::find_if(modes, [&](const auto& entry) { return entry.first == argument; });
        if (known == std::end(modes))
            return std::unexpected(QStringLiteral("'%1' is no option of Tavrelon; --help shows them.").arg(argument));
        mode = std::max(mode, known->second);
    }
    return mode;
}

QString helpText() {
    return QStringLiteral(
        "Usage: tavrelon [--background]\n"
        "Answers what you type, in every text field of an X11 desktop.\n"
        "\n"
        "  --background   start with the tray icon alone, without the dashboard\n"
        "  --help         print this text\n"
        "  --version      print the version\n");
}

}  // namespace tavrelon::desktop
