#pragma once

#include <atomic>

#include "desktop/audio/pulse_audio_input.h"
#include "desktop/documents/document_process_reader.h"
#include "desktop/documents/picture_process_decoder.h"
#include "desktop/linux/files/directory_defaults_store.h"
#include "desktop/linux/files/posix_file_system.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/typing_adapters.h"
#include "desktop/x11/screen/x11_screen_capture.h"
#include "platform/platform.h"

namespace tavrelon::bench {

/// Takes the sound and understands nothing.
class NoEngine : public platform::Speech {
 public:
    std::atomic<std::size_t> samples = 0;

    bool isAvailable(const QString&) override { return true; }
    platform::AuthorizationStatus authorizationStatus() override { return platform::AuthorizationStatus::Authorized; }
    void requestAuthorization(AuthorizationHandler) override {}
    bool supportsOnDeviceRecognition(const QString&) override { return true; }
    std::shared_ptr<platform::SpeechRequest> createRequest(const platform::SpeechRequestOptions&) override {
        return std::make_shared<Request>(samples);
    }
    std::unique_ptr<platform::SpeechTask> startTask(std::shared_ptr<platform::SpeechRequest>, ResultHandler) override {
        return std::make_unique<Task>();
    }

 private:
    class Request : public platform::SpeechRequest {
     public:
        explicit Request(std::atomic<std::size_t>& samples) : samples_(samples) {}
        void append(std::span<const std::int16_t> sound) override { samples_ += sound.size(); }
        void endAudio() override {}

     private:
        std::atomic<std::size_t>& samples_;
    };
    class Task : public platform::SpeechTask {
     public:
        void cancel() override {}
        void finish() override {}
    };
};

/// The product's adapters on this desktop, all but the engine that recognises speech.
template <typename Log>
struct DesktopAdapters : testing::TypingAdapters<Log> {
    using Typing = testing::TypingAdapters<Log>;

    explicit DesktopAdapters(QString folder = {}) : folder(std::move(folder)) {}

    QString folder;  ///< of settings and files
    NoEngine speech;
    std::unique_ptr<desktop::X11ScreenCapture> screenCapture =
        desktop::X11ScreenCapture::create(Typing::loop, Typing::log, *Typing::workspace).value();
    desktop::PictureProcessDecoder pictureDecoder{Typing::loop, QString()};
    desktop::QtImageCodec imageCodec{Typing::loop, pictureDecoder};
    desktop::QtHttpSession httpSession{Typing::loop};
    desktop::PosixFileSystem fileSystem;
    desktop::DirectoryDefaultsStore defaultsStore{fileSystem, Typing::log, folder};
    desktop::ThreadSerialQueues serialQueues;
    desktop::DocumentProcessReader documentReader{Typing::loop, QString()};
    desktop::PulseAudioInput audioInput{Typing::loop, Typing::log};
    platform::Platform platform{Typing::loop,
                                Typing::log,
                                Typing::accessibility,
                                Typing::hotkeys,
                                Typing::keyObserver,
                                *Typing::poster,
                                *Typing::pasteboard,
                                *Typing::workspace,
                                Typing::inputSource,
                                *screenCapture,
                                imageCodec,
                                httpSession,
                                defaultsStore,
                                fileSystem,
                                serialQueues,
                                documentReader,
                                audioInput,
                                speech,
                                folder};
};

}  // namespace tavrelon::bench
