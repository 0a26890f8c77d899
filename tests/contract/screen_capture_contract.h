#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <functional>
#include <memory>

#include "platform/screen_capture.h"

namespace tavrelon::testing {

/// A desktop on which the contract's tests open windows. It has one display at least.
class ScreenWorld {
 public:
    template <typename T>
    using Outcome = std::expected<T, platform::CaptureError>;

    virtual ~ScreenWorld() = default;
    virtual platform::ScreenCapture& capture() = 0;

    /// Opens a window of an application and puts it in front of the others.
    virtual void open(const QString& application) = 0;
    virtual void closeAll() = 0;

    virtual Outcome<platform::ShareableContent> content() = 0;
    virtual Outcome<platform::Image> picture(const platform::ShareableWindow& window) = 0;
    virtual Outcome<platform::Image> picture(const platform::ShareableDisplay& display) = 0;

    /// Waits until something holds; false if it does not.
    virtual bool becomesTrue(const std::function<bool()>& condition) = 0;
};

using ScreenWorldFactory = std::function<std::unique_ptr<ScreenWorld>()>;

class ScreenCaptureContract : public ::testing::TestWithParam<ScreenWorldFactory> {
 public:
    std::unique_ptr<ScreenWorld> world = GetParam()();

    /// The applications of the windows on screen, the front one first.
    QStringList applications() {
        QStringList found;
        const auto content = world->content();
        if (content)
            for (const auto& window : content->windows)
                if (window.isOnScreen)
                    found << window.bundleIdentifier.value_or(QStringLiteral("?"));
        return found;
    }
};

}  // namespace tavrelon::testing
