#include "capture/cursor_locator.h"

namespace tavrelon::capture {

using platform::AXAttribute;
using platform::AXElement;
using platform::AXPoint;
using platform::AXRect;
using platform::AXSize;

namespace {

template <typename T>
std::optional<T> unwrapped(const platform::Accessibility::Result& result) {
    const auto* value = result ? std::get_if<T>(&*result) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

}  // namespace

std::optional<AXRect> CursorLocator::caretRect() {
    const auto element = focusedElement();
    if (!element)
        return std::nullopt;
    const auto bounds = textBounds(*element);
    return bounds ? bounds : elementFrame(*element);
}

std::optional<AXElement> CursorLocator::focusedElement() {
    const auto application = unwrapped<AXElement>(
        accessibility_.copyAttribute(platform::axSystemWideElement(), AXAttribute::FocusedApplication));
    if (!application)
        return std::nullopt;
    return unwrapped<AXElement>(accessibility_.copyAttribute(*application, AXAttribute::FocusedUIElement));
}

std::optional<AXRect> CursorLocator::textBounds(const AXElement& element) {
    const auto range =
        unwrapped<text::Utf16Range>(accessibility_.copyAttribute(element, AXAttribute::SelectedTextRange));
    if (!range)
        return std::nullopt;
    const auto bounds =
        unwrapped<AXRect>(accessibility_.copyParameterizedAttribute(element, AXAttribute::BoundsForRange, *range));
    return bounds && !bounds->isEmpty() ? bounds : std::nullopt;
}

std::optional<AXRect> CursorLocator::elementFrame(const AXElement& element) {
    const auto position = unwrapped<AXPoint>(accessibility_.copyAttribute(element, AXAttribute::Position));
    const auto size = unwrapped<AXSize>(accessibility_.copyAttribute(element, AXAttribute::Size));
    if (!position || !size)
        return std::nullopt;
    return AXRect{*position, *size};
}

}  // namespace tavrelon::capture
