#pragma once

#include "platform/input_source.h"
#include "platform/log.h"
#include "platform/screen_capture.h"

// What this desktop does not offer yet. Each says so in one log line when it is made.
namespace tavrelon::desktop {

class UnavailableInputSource : public platform::InputSource {
 public:
    explicit UnavailableInputSource(platform::Log& log) {
        log.line(QStringLiteral("[Desktop] Input methods are not asked whether they compose"));
    }
    bool isInputMethodActive() override { return false; }
};

class UnavailableScreenCapture : public platform::ScreenCapture {
 public:
    explicit UnavailableScreenCapture(platform::Log& log) {
        log.line(QStringLiteral("[Desktop] Screens cannot be captured; requests go without a screenshot"));
    }
    bool preflightAccess() override { return false; }
};

}  // namespace tavrelon::desktop
