#pragma once

#include <memory>

#include "async/main_loop.h"
#include "desktop/gnome/windows/gnome_workspace.h"
#include "desktop/linux/process/thread_serial_queue.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// Pictures that our extension takes: of a window as it has drawn itself, whatever lies over it and also on another
/// workspace, without the pointer; of displays as they are seen. They come as PNG and are decoded on a thread of their
/// own.
class GnomeScreenCapture : public platform::ScreenCapture {
 public:
    static constexpr std::chrono::milliseconds pictureLimit{2000};

    /// The referents must outlive this object.
    GnomeScreenCapture(async::MainLoop& loop, GnomeWorkspace& workspace, std::shared_ptr<ShellConnection> shell)
        : loop_(loop), workspace_(workspace), shell_(std::move(shell)) {}

    bool preflightAccess() override { return true; }
    async::Task<std::expected<platform::ShareableContent, platform::CaptureError>> shareableContent() override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureWindow(
        platform::ShareableWindow window) override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureDisplay(
        platform::ShareableDisplay display) override;
    /// Nothing covers a window in its picture.
    std::shared_ptr<void> expectCapture() override { return nullptr; }

 private:
    using Picture = std::expected<platform::Image, platform::CaptureError>;

    async::Task<Picture> picture(text::Json question);

    async::MainLoop& loop_;
    GnomeWorkspace& workspace_;
    std::shared_ptr<ShellConnection> shell_;
    ThreadSerialQueue queue_{QStringLiteral("pictures")};
};

}  // namespace tavrelon::desktop
