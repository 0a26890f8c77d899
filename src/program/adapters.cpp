#include "program/adapters.h"

#include <QCoreApplication>

#include "desktop/documents/confinement.h"
#include "desktop/x11/windows/x11_terminal_shortcuts.h"

namespace tavrelon::program {

namespace {

QString readerProgram() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/tavrelon-document-reader");
}

}  // namespace

std::expected<Essentials, QString> openDesktop(async::MainLoop& loop, platform::Log& log,
                                               const std::shared_ptr<desktop::PostedKeys>& posted) {
    auto workspace = desktop::X11Workspace::create();
    if (!workspace)
        return std::unexpected(workspace.error());
    auto pasteboard = desktop::X11Pasteboard::create(loop, log);
    if (!pasteboard)
        return std::unexpected(pasteboard.error());
    auto shortcuts = desktop::X11TerminalShortcuts::create(loop, log, **pasteboard);
    if (!shortcuts)
        return std::unexpected(shortcuts.error());
    auto keyPoster = desktop::X11KeyPoster::open(loop, posted, *std::move(shortcuts));
    if (!keyPoster)
        return std::unexpected(keyPoster.error());
    auto screenCapture = desktop::X11ScreenCapture::create(loop, log, **workspace);
    if (!screenCapture)
        return std::unexpected(screenCapture.error());
    auto panelSurroundings = desktop::X11PanelSurroundings::create();
    if (!panelSurroundings)
        return std::unexpected(panelSurroundings.error());
    auto nativeKeys = desktop::X11NativeKeys::create();
    if (!nativeKeys)
        return std::unexpected(nativeKeys.error());
    return Essentials{*std::move(workspace),     *std::move(pasteboard),        *std::move(keyPoster),
                      *std::move(screenCapture), *std::move(panelSurroundings), *std::move(nativeKeys)};
}

Adapters::Adapters(async::MainLoop& loop, platform::Log& log, Essentials& essentials,
                   const std::shared_ptr<desktop::PostedKeys>& posted, const desktop::UserFolders& folders)
    : accessibility(*essentials.workspace, loop, log),
      hotkeys(loop, log, posted),
      keyObserver(hotkeys),
      inputSource(loop),
      pictureDecoder(loop, readerProgram()),
      imageCodec(loop, pictureDecoder),
      httpSession(loop),
      documentReader(loop, readerProgram()),
      audioInput(loop, log),
      speech(loop, log, folders.applicationSupport),
      defaultsStore(fileSystem, log, folders.configuration),
      platform{loop,
               log,
               accessibility,
               hotkeys,
               keyObserver,
               *essentials.keyPoster,
               *essentials.pasteboard,
               *essentials.workspace,
               inputSource,
               *essentials.screenCapture,
               imageCodec,
               httpSession,
               defaultsStore,
               fileSystem,
               serialQueues,
               documentReader,
               audioInput,
               speech,
               folders.applicationSupport} {
    if (const auto gap = desktop::confinementGap())
        log.line(QStringLiteral("[Documents] ") + *gap);
}

}  // namespace tavrelon::program
