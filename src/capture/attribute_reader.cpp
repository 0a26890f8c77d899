#include "capture/attribute_reader.h"

namespace tavrelon::capture {

using platform::AXAttribute;
using platform::AXElement;
using platform::AXError;
using platform::AXValue;

AttributeReader::AttributeReader(async::MainLoop& loop, platform::Log& log, platform::Accessibility& accessibility,
                                 platform::Workspace& workspace)
    : loop_(loop), log_(log), accessibility_(accessibility), workspace_(workspace) {}

std::optional<AXElement> AttributeReader::focusedElement() {
    if (auto element = copyElementAttribute(platform::axSystemWideElement(), AXAttribute::FocusedUIElement,
                                            QStringLiteral("focused element (system-wide)")))
        return element;
    const auto application = focusedApplication();
    if (!application)
        return std::nullopt;
    return copyElementAttribute(*application, AXAttribute::FocusedUIElement, QStringLiteral("focused element (app)"));
}

std::optional<AXElement> AttributeReader::focusedApplication() {
    if (auto application = copyElementAttribute(platform::axSystemWideElement(), AXAttribute::FocusedApplication,
                                                QStringLiteral("focused app")))
        return application;
    const auto frontmost = workspace_.frontmostApplication();
    if (!frontmost) {
        log_.line(QStringLiteral("[ContextCapturer] No frontmost application available for fallback"));
        return std::nullopt;
    }
    log_.line(QStringLiteral("[ContextCapturer] Falling back to frontmost app: %1 (%2)")
                  .arg(frontmost->localizedName.value_or(QStringLiteral("unknown")))
                  .arg(frontmost->processIdentifier));
    return platform::axApplicationElement(frontmost->processIdentifier);
}

std::optional<AXElement> AttributeReader::copyElementAttribute(const AXElement& element, AXAttribute attribute,
                                                               const QString& label) {
    const auto value = copyAttribute(element, attribute, label);
    if (!value)
        return std::nullopt;
    if (const auto* found = std::get_if<AXElement>(&*value))
        return *found;
    log_.line(QStringLiteral("[ContextCapturer] %1 is not AXUIElement: %2").arg(label, platform::axTypeName(*value)));
    return std::nullopt;
}

std::optional<AXValue> AttributeReader::copyAttribute(const AXElement& element, AXAttribute attribute,
                                                      const QString& label) {
    if (isCoolingDown(label))
        return std::nullopt;
    auto result = accessibility_.copyAttribute(element, attribute);
    if (result) {
        axFailureStates_.erase(label);
        return *std::move(result);
    }
    if (shouldLogFailure(label, result.error()))
        log_.line(QStringLiteral("[ContextCapturer] Failed to get %1, error: %2")
                      .arg(label, platform::axErrorName(result.error())));
    return std::nullopt;
}

bool AttributeReader::isCoolingDown(const QString& label) const {
    const auto found = axFailureStates_.find(label);
    if (found == axFailureStates_.end())
        return false;
    const auto& state = found->second;
    const bool retryable = state.lastError == AXError::APIDisabled || state.lastError == AXError::CannotComplete ||
                           state.lastError == AXError::Failure;
    return retryable && loop_.now() - state.lastAttemptAt < axFailureCooldown;
}

bool AttributeReader::shouldLogFailure(const QString& label, AXError error) {
    const auto now = loop_.now();
    const auto found = axFailureStates_.find(label);
    const auto previous = found == axFailureStates_.end() ? std::nullopt : found->second.lastLogAt;
    const bool log = !previous || now - *previous >= axFailureLogInterval;
    axFailureStates_.insert_or_assign(label, AXFailureState{error, now, log ? now : previous});
    return log;
}

}  // namespace tavrelon::capture
