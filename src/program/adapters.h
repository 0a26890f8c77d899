#pragma once

#include <expected>
#include <memory>

#include "desktop/atspi/atspi_accessibility.h"
#include "desktop/audio/pulse_audio_input.h"
#include "desktop/audio/vosk_speech.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/documents/picture_process_decoder.h"
#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/files/user_folders.h"
#include "desktop/linux/input_method/dbus_input_source.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/x11/keys/x11_key_observer.h"
#include "desktop/x11/keys/x11_key_poster.h"
#include "desktop/x11/keys/x11_native_keys.h"
#include "desktop/x11/screen/x11_screen_capture.h"
#include "desktop/x11/selection/x11_pasteboard.h"
#include "desktop/x11/windows/x11_panel_surroundings.h"
#include "desktop/x11/windows/x11_workspace.h"
#include "platform/platform.h"

namespace tavrelon::program {

/// The parts of the desktop without which nothing can be done.
struct Essentials {
    std::unique_ptr<desktop::X11Workspace> workspace;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard;
    std::unique_ptr<desktop::X11KeyPoster> keyPoster;
    std::unique_ptr<desktop::X11ScreenCapture> screenCapture;
    std::unique_ptr<desktop::X11PanelSurroundings> panelSurroundings;
    std::unique_ptr<desktop::X11NativeKeys> nativeKeys;
};

/// Opens them. The error says which one is missing, for the user to read.
std::expected<Essentials, QString> openDesktop(async::MainLoop& loop, platform::Log& log,
                                               const std::shared_ptr<desktop::PostedKeys>& posted);

/// This desktop behind the ports.
struct Adapters {
    desktop::AtspiAccessibility accessibility;
    desktop::X11Hotkeys hotkeys;
    desktop::X11KeyObserver keyObserver;
    desktop::DBusInputSource inputSource;
    desktop::PictureProcessDecoder pictureDecoder;
    desktop::QtImageCodec imageCodec;
    desktop::QtHttpSession httpSession;
    desktop::PosixFileSystem fileSystem;
    desktop::ThreadSerialQueues serialQueues;
    desktop::DocumentProcessReader documentReader;
    desktop::PulseAudioInput audioInput;
    desktop::VoskSpeech speech;
    desktop::DirectoryDefaultsStore defaultsStore;
    platform::Platform platform;

    Adapters(async::MainLoop& loop, platform::Log& log, Essentials& essentials,
             const std::shared_ptr<desktop::PostedKeys>& posted, const desktop::UserFolders& folders);
};

}  // namespace tavrelon::program
