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
    {QLatin1StringView("--check"), StartMode::Check},
    {QLatin1StringView("--let-keys-go"), StartMode::LetKeysGo},
    {QLatin1StringView("--trigger"), StartMode::Trigger},
};

}  // namespace

std::expected<CommandLine, QString> commandLineFrom(const QStringList& arguments) {
    CommandLine read;
    read.asJson = arguments.contains(QLatin1StringView("--json"));
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == QLatin1StringView("--json"))
            continue;
        const auto* known = std::ranges::find_if(modes, [&](const auto& entry) { return entry.first == *argument; });
        if (known == std::end(modes))
            return std::unexpected(QStringLiteral("'%1' is no option of Tavrelon; --help shows them.").arg(*argument));
        read.mode = std::max(read.mode, known->second);
        if (known->second != StartMode::Trigger)
            continue;
        if (++argument == arguments.end())
            return std::unexpected(QStringLiteral("--trigger needs a name; --help shows them."));
        read.trigger = *argument;
    }
    if (read.asJson && read.mode != StartMode::Check)
        return std::unexpected(QStringLiteral("--json goes with --check; --help shows the options."));
    return read;
}

QString helpText() {
    return QStringLiteral(
        "Usage: tavrelon [--background | --trigger NAME | --check [--json] | --let-keys-go]\n"
        "Answers what you type, in every text field of the desktop.\n"
        "\n"
        "  --background   start with the tray icon alone, without the dashboard\n"
        "  --trigger NAME does in the running program what a hotkey does: text, prompt, voice, dictation,\n"
        "                 reply, video, cancel or toggle\n"
        "  --check        print what works here and what is missing, with one short question to the model;\n"
        "                 the exit status is the count of what is missing. --json: for programs to read\n"
        "  --let-keys-go  give back hotkeys that a killed Tavrelon has left with the desktop; it is done by itself\n"
        "  --help         print this text\n"
        "  --version      print the version\n");
}

}  // namespace tavrelon::desktop
