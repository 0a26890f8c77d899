#include "program/start.h"

#include <sysexits.h>

#include <QCoreApplication>
#include <QFile>
#include <cstdio>

#include "desktop/linux/files/private_folder.h"
#include "desktop/linux/process/standard_output_log.h"
#include "desktop/session/left_over_keys.h"
#include "desktop/session/windowing_system.h"
#include "hotkeys/hotkey_table.h"
#include "persistence/history_manager.h"
#include "program/check.h"

namespace tavrelon::program {

namespace {

std::unexpected<int> endWith(int status, const QString& reason) {
    std::fprintf(stderr, "%s\n", desktop::escapedLine(reason).constData());
    return std::unexpected(status);
}

/// What nobody else may read or have put there. Before anything is read from it.
std::expected<void, QString> makePrivate(const desktop::UserFolders& folders) {
    for (const auto& folder : {folders.configuration, folders.applicationSupport,
                               folders.applicationSupport + u'/' + persistence::HistoryManager::imagesFolder})
        if (auto made = desktop::makePrivate(folder); !made)
            return made;
    return {};
}

std::unexpected<int> triggered(const desktop::UserFolders& folders, const QString& name) {
    if (!hotkeys::actionNamed(name))
        return endWith(EX_USAGE, QStringLiteral("'%1' is nothing to trigger; --help shows what is.").arg(name));
    if (!desktop::SingleInstance::call(folders.configuration, qEnvironmentVariable("XDG_RUNTIME_DIR"), name))
        return endWith(EX_UNAVAILABLE, QStringLiteral("Tavrelon is not running, or does not answer."));
    return std::unexpected(EX_OK);
}

std::unexpected<int> keysLetGo(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (!desktop::letLeftOverKeysGo())
        return endWith(EX_TEMPFAIL, QStringLiteral("Tavrelon is running, and holds its hotkeys."));
    return std::unexpected(EX_OK);
}

}  // namespace

std::expected<Start, int> prepareStart(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    const auto wanted = desktop::commandLineFrom(arguments);
    if (!wanted)
        return endWith(EX_USAGE, wanted.error());
    const auto mode = wanted->mode;
    if (mode == desktop::StartMode::Version || mode == desktop::StartMode::Help) {
        std::fputs(
            mode == desktop::StartMode::Help ? qUtf8Printable(desktop::helpText()) : "Tavrelon " TAVRELON_VERSION "\n",
            stdout);
        return std::unexpected(EX_OK);
    }
    if (mode == desktop::StartMode::LetKeysGo)
        return keysLetGo(argc, argv);
    auto folders = desktop::userFolders();
    if (!folders)
        return endWith(EX_CONFIG, QStringLiteral("Tavrelon cannot start: there is no home folder to keep settings in; "
                                                 "set HOME."));
    if (mode == desktop::StartMode::Trigger)
        return triggered(*folders, wanted->trigger);
    if (mode == desktop::StartMode::Check)
        return std::unexpected(check(argc, argv, *folders, wanted->asJson ? ReportForm::Json : ReportForm::Lines));
    // The views' toolkit ends the process where it finds no display, so this is asked first.
    auto display = desktop::tryDisplay();
    if (!display)
        return endWith(EX_UNAVAILABLE, QStringLiteral("Tavrelon cannot start: %1").arg(display.error()));
    if (const auto guarded = makePrivate(*folders); !guarded)
        return endWith(EX_NOPERM, QStringLiteral("Tavrelon cannot start: %1").arg(guarded.error()));
    auto instance = desktop::SingleInstance::claim(folders->configuration, qEnvironmentVariable("XDG_RUNTIME_DIR"));
    if (instance)
        return Start{mode, *std::move(folders), *std::move(instance), *std::move(display)};
    if (instance.error() == desktop::SingleInstance::Refusal::Silent)
        return endWith(EX_TEMPFAIL, QStringLiteral("Tavrelon is running already and does not answer."));
    return endWith(EX_OK, QStringLiteral("Tavrelon is running already and shows its dashboard."));
}

}  // namespace tavrelon::program
