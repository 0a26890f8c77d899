#pragma once

#include <QString>
#include <map>
#include <optional>

#include "async/main_loop.h"
#include "platform/accessibility.h"
#include "platform/log.h"
#include "platform/workspace.h"

namespace tavrelon::capture {

/// The last failure of one labelled read.
struct AXFailureState {
    platform::AXError lastError;
    async::Instant lastAttemptAt;
    std::optional<async::Instant> lastLogAt;  ///< absent until a failure of this label was logged
};

/// Reads accessibility attributes under labels. A label whose read failed in a way that is worth waiting out is left
/// alone for a while, so that an unresponsive application is not asked again and again, and its failures are logged
/// at most once per interval. Main thread; nothing throws, every failure is an absent value.
class AttributeReader {
 public:
    static constexpr std::chrono::milliseconds axFailureCooldown{400};
    static constexpr std::chrono::milliseconds axFailureLogInterval{2000};

    AttributeReader(async::MainLoop& loop, platform::Log& log, platform::Accessibility& accessibility,
                    platform::Workspace& workspace);

    /// The element that has the keyboard focus, by the fall-backs that all reads share.
    std::optional<platform::AXElement> focusedElement();

    /// The application that has the focus.
    std::optional<platform::AXElement> focusedApplication();

    std::optional<platform::AXElement> copyElementAttribute(const platform::AXElement& element,
                                                            platform::AXAttribute attribute, const QString& label);
    std::optional<platform::AXValue> copyAttribute(const platform::AXElement& element, platform::AXAttribute attribute,
                                                   const QString& label);

 private:
    bool isCoolingDown(const QString& label) const;
    bool shouldLogFailure(const QString& label, platform::AXError error);

    async::MainLoop& loop_;
    platform::Log& log_;
    platform::Accessibility& accessibility_;
    platform::Workspace& workspace_;
    std::map<QString, AXFailureState> axFailureStates_;
};

}  // namespace tavrelon::capture
