#pragma once

#include <atomic>
#include <memory>

#include "desktop/kwin/windows/kwin_workspace.h"
#include "desktop/wayland/screen/picture_queue.h"
#include "platform/log.h"

namespace tavrelon::desktop {

/// Pictures that KWin takes: of a window as it has drawn itself, whatever lies over it, and of the screen in use. KWin
/// grants them to `tavrelon-window-picture` alone, a process of which each picture takes one.
class KWinScreenCapture : public platform::ScreenCapture {
 public:
    /// `program`: the absolute path of that process's. Begins to find out whether KWin grants it anything. The
    /// referents must outlive this object.
    KWinScreenCapture(async::MainLoop& loop, platform::Log& log, KWinWorkspace& workspace, QString program);

    /// Until the first answer it is taken for granted.
    bool preflightAccess() override { return !*isRefused_; }
    /// Of the windows that in front alone, and of the displays that in use.
    async::Task<std::expected<platform::ShareableContent, platform::CaptureError>> shareableContent() override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureWindow(
        platform::ShareableWindow window) override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureDisplay(
        platform::ShareableDisplay display) override;
    /// Nothing covers a window in its picture.
    std::shared_ptr<void> expectCapture() override { return nullptr; }

 private:
    async::Task<std::expected<platform::Image, platform::CaptureError>> picture(QString subject);

    KWinWorkspace& workspace_;
    QString program_;
    std::shared_ptr<std::atomic<bool>> isRefused_ = std::make_shared<std::atomic<bool>>(false);
    PictureQueue queue_;
};

}  // namespace tavrelon::desktop
