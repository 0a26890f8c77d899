#pragma once

#include "desktop/typing_adapters.h"
#include "support/input_desk.h"

namespace tavrelon::testing {

/// This desktop's adapters for all that has to do with typing; files, the network and pictures are faked.
struct DesktopAdapters : TypingAdapters<RecordingLog> {
    FakeScreenCapture screenCapture;
    FakeImageCodec imageCodec;
    FakeHttpSession httpSession{loop};
    MemoryDefaultsStore defaultsStore;
    FailingFileSystem fileSystem;
    FakeSerialQueues serialQueues{loop};
    FakeDocumentReader documentReader{loop};
    FakeAudioInput audioInput;
    FakeSpeech speech;
    platform::Platform platform{loop,
                                log,
                                accessibility,
                                hotkeys,
                                keyObserver,
                                *poster,
                                *pasteboard,
                                *workspace,
                                inputSource,
                                screenCapture,
                                imageCodec,
                                httpSession,
                                defaultsStore,
                                fileSystem,
                                serialQueues,
                                documentReader,
                                audioInput,
                                speech,
                                QStringLiteral("/data/Tavrelon")};
};

/// The input core at work on this desktop.
struct RealDesk : DesktopAdapters, InputCore {
    RealDesk() : InputCore(DesktopAdapters::platform) {}
};

}  // namespace tavrelon::testing
