#pragma once

#include "platform/platform.h"
#include "platform/user_interface.h"
#include "support/failing_file_system.h"
#include "support/fake_accessibility.h"
#include "support/fake_application.h"
#include "support/fake_audio_input.h"
#include "support/fake_document_reader.h"
#include "support/fake_http_session.h"
#include "support/fake_image_codec.h"
#include "support/fake_input_source.h"
#include "support/fake_key_poster.h"
#include "support/fake_keyboard.h"
#include "support/fake_panel.h"
#include "support/fake_pasteboard.h"
#include "support/fake_screen_capture.h"
#include "support/fake_screens.h"
#include "support/fake_serial_queue.h"
#include "support/fake_speech.h"
#include "support/fake_status_item.h"
#include "support/fake_workspace.h"
#include "support/memory_defaults_store.h"
#include "support/recording_log.h"
#include "support/simulated_editor.h"
#include "support/virtual_main_loop.h"

namespace tavrelon::testing {

/// A whole desktop of fakes on virtual time, with an editor in front.
struct TestDesktop {
    VirtualMainLoop loop;
    RecordingLog log;
    FakeAccessibility accessibility;
    FakeKeyboard keyboard;
    FakeKeyPoster keyPoster{loop};
    FakePasteboard pasteboard{loop};
    FakeWorkspace workspace;
    FakeInputSource inputSource;
    FakeScreenCapture screenCapture;
    FakeImageCodec imageCodec;
    FakeHttpSession httpSession{loop};
    MemoryDefaultsStore defaultsStore;
    FailingFileSystem fileSystem;
    FakeSerialQueues serialQueues{loop};
    FakeDocumentReader documentReader{loop};
    FakeAudioInput audioInput;
    FakeSpeech speech;
    FakeApplication application;
    FakePanels panels{workspace};
    FakeScreens screens;
    FakeStatusItem statusItem;
    platform::UserInterface userInterface{application, panels, screens, statusItem};
    SimulatedEditor editor{accessibility, pasteboard, keyPoster};
    platform::Platform platform{loop,
                                log,
                                accessibility,
                                keyboard.hotkeys,
                                keyboard.observer,
                                keyPoster,
                                pasteboard,
                                workspace,
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

    TestDesktop() {
        accessibility.frontmostProcess = 1234;
        workspace.focus({.processIdentifier = 1234,
                         .bundleIdentifier = QStringLiteral("org.example.editor"),
                         .localizedName = QStringLiteral("Editor"),
                         .windowIdentifier = 1},
                        QStringLiteral("Untitled"));
        accessibility.windowTitle = QStringLiteral("Untitled");
    }
};

}  // namespace tavrelon::testing
