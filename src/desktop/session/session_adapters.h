#pragma once

#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/audio/pulse_audio_input.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/documents/picture_process_decoder.h"
#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/files/user_folders.h"
#include "desktop/linux/input_method/dbus_input_source.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/session/windowing_system.h"
#include "platform/platform.h"

namespace tavrelon::desktop {

/// This session behind the ports.
struct SessionAdapters {
    /// Where a measurement or a test wants something else than the user has.
    struct Choices {
        std::unique_ptr<platform::Speech> speech;  ///< null: the recogniser that is installed
        std::chrono::milliseconds inputMethodLimit = DBusInputSource::answerLimit;
    };

    WindowingSystem windowing;
    AtspiAccessibility accessibility;
    DBusInputSource inputSource;
    PictureProcessDecoder pictureDecoder;
    QtImageCodec imageCodec;
    QtHttpSession httpSession;
    PosixFileSystem fileSystem;
    ThreadSerialQueues serialQueues;
    DocumentProcessReader documentReader;
    PulseAudioInput audioInput;
    std::unique_ptr<platform::Speech> speech;
    DirectoryDefaultsStore defaultsStore;
    platform::Platform platform;

    SessionAdapters(async::MainLoop& loop, platform::Log& log, WindowingSystem opened, const UserFolders& folders)
        : SessionAdapters(loop, log, std::move(opened), folders, {}) {}
    SessionAdapters(async::MainLoop& loop, platform::Log& log, WindowingSystem opened, const UserFolders& folders,
                    Choices choices);
};

}  // namespace tavrelon::desktop
