#pragma once

#include <QStringList>

#include "async/main_loop.h"
#include "platform/accessibility.h"
#include "platform/audio_input.h"
#include "platform/defaults_store.h"
#include "platform/document_reader.h"
#include "platform/file_system.h"
#include "platform/hotkeys.h"
#include "platform/http_session.h"
#include "platform/image_codec.h"
#include "platform/input_source.h"
#include "platform/key_observer.h"
#include "platform/key_poster.h"
#include "platform/log.h"
#include "platform/pasteboard.h"
#include "platform/screen_capture.h"
#include "platform/serial_queue.h"
#include "platform/speech.h"
#include "platform/workspace.h"

namespace tavrelon::platform {

/// Everything the logic needs of a desktop. The referents outlive all services.
struct Platform {
    async::MainLoop& mainLoop;
    Log& log;
    Accessibility& accessibility;
    Hotkeys& hotkeys;
    KeyObserver& keyObserver;
    KeyPoster& keyPoster;
    Pasteboard& pasteboard;
    Workspace& workspace;
    InputSource& inputSource;
    ScreenCapture& screenCapture;
    ImageCodec& imageCodec;
    HttpSession& httpSession;
    DefaultsStore& defaultsStore;
    FileSystem& fileSystem;
    SerialQueues& serialQueues;
    DocumentReader& documentReader;
    AudioInput& audioInput;
    Speech& speech;
    QString applicationSupport;         ///< the folder "Tavrelon" in the user's data folder, absolute
    QStringList sessionLanguages = {};  ///< of the user's session, the preferred first, as "zh-Hans-CN"
};

}  // namespace tavrelon::platform
