#pragma once

#include <QRect>
#include <functional>
#include <optional>

#include "desktop/wayland/screen/output_picture.h"
#include "desktop/wayland/screen/picture_queue.h"
#include "desktop/wayland/sway/sway_workspace.h"
#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// Takes pictures of sway's displays, and of windows by the place where they are: what lies over a window is in its
/// picture. Only where an overlay of this program's own does, the picture holds what was seen there when the capture
/// was announced. The pictures are taken on a thread of their own; one that nobody waits for any more is not begun.
class SwayScreenCapture : public platform::ScreenCapture {
 public:
    /// For one call.
    static constexpr std::chrono::milliseconds limit{2000};
    /// For what is taken ahead, whose end other pictures wait for.
    static constexpr std::chrono::milliseconds aheadLimit{500};

    /// `overlays` tells where this program's own are now, in logical pixels; main thread. The referents must outlive
    /// this object.
    SwayScreenCapture(async::MainLoop& loop, SwayWorkspace& workspace, bool hasAccess,
                      std::function<std::vector<QRect>()> overlays)
        : workspace_(workspace), hasAccess_(hasAccess), overlays_(std::move(overlays)), queue_(loop) {}

    bool preflightAccess() override { return hasAccess_; }
    async::Task<std::expected<platform::ShareableContent, platform::CaptureError>> shareableContent() override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureWindow(
        platform::ShareableWindow window) override;
    async::Task<std::expected<platform::Image, platform::CaptureError>> captureDisplay(
        platform::ShareableDisplay display) override;
    std::shared_ptr<void> expectCapture() override;

 private:
    using Picture = std::expected<platform::Image, platform::CaptureError>;

    /// The part of a window that one display shows.
    struct Shown {
        OutputRegion region;
        QPoint corner;  ///< of that part, in logical pixels of the desktop
        bool operator==(const Shown&) const = default;
    };
    /// What a window looked like when its capture was announced.
    struct Ahead {
        quint64 window = 0;
        Shown shown;
        QImage picture;  ///< the thread's own
    };

    std::optional<Shown> shownPartOf(const SwayWindow& window);

    SwayWorkspace& workspace_;
    bool hasAccess_;
    std::function<std::vector<QRect>()> overlays_;
    std::weak_ptr<Ahead> ahead_;
    PictureQueue queue_;
};

}  // namespace tavrelon::desktop
