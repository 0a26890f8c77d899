#include "desktop/session/session_adapters.h"

#include <QCoreApplication>
#include <QLocale>

#include "desktop/audio/vosk_speech.h"
#include "desktop/documents/confinement.h"

namespace tavrelon::desktop {

namespace {

QString readerProgram() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/tavrelon-document-reader");
}

}  // namespace

SessionAdapters::SessionAdapters(async::MainLoop& loop, platform::Log& log, WindowingSystem opened,
                                 const UserFolders& folders, Choices choices)
    : windowing(std::move(opened)),
      accessibility(*windowing.workspace, loop, log),
      inputSource(loop, choices.inputMethodLimit),
      pictureDecoder(loop, readerProgram()),
      imageCodec(loop, pictureDecoder),
      httpSession(loop),
      documentReader(loop, readerProgram()),
      audioInput(loop, log),
      speech(choices.speech ? std::move(choices.speech)
                            : std::make_unique<VoskSpeech>(loop, log, folders.applicationSupport)),
      defaultsStore(fileSystem, log, folders.configuration),
      platform{loop,
               log,
               accessibility,
               *windowing.hotkeys,
               *windowing.keyObserver,
               *windowing.keyPoster,
               *windowing.pasteboard,
               *windowing.workspace,
               inputSource,
               *windowing.screenCapture,
               imageCodec,
               httpSession,
               defaultsStore,
               fileSystem,
               serialQueues,
               documentReader,
               audioInput,
               *speech,
               folders.applicationSupport,
               QLocale::system().uiLanguages()} {
    if (const auto gap = confinementGap())
        log.line(QStringLiteral("[Documents] ") + *gap);
}

}  // namespace tavrelon::desktop
