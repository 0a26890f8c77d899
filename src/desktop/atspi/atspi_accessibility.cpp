#include "desktop/atspi/atspi_accessibility.h"

#include <QCoreApplication>

#include "desktop/atspi/atspi_focus_finder.h"
#include "desktop/atspi/chain.h"
#include "desktop/atspi/embedded_text.h"
#include "desktop/atspi/field_places.h"
#include "desktop/atspi/field_writer.h"
#include "desktop/atspi/own_field.h"

namespace tavrelon::desktop {

using namespace std::chrono_literals;
using atspi::ObjectReference;
using platform::AXAttribute;
using platform::AXAttributedString;
using platform::AXElement;
using platform::AXError;
using text::Utf16Range;
using Kind = AXElement::Kind;

namespace {

// Time-outs of the bus may come a twentieth late, and callers are promised 250 ms.
constexpr auto readAllowance = 235ms;

ObjectReference referenceOf(const AXElement& element) {
    return {element.busName, element.path};
}

/// On the bus nobody is without a name.
bool isOwn(const AXElement& element) {
    return element.kind == Kind::Object && element.busName.isEmpty();
}

std::optional<OwnField> ownField(const AXElement& element) {
    auto field = OwnField::focused();
    return field && field->isAt(element) && !field->isHidden() ? field : std::nullopt;
}

}  // namespace

/// What was read in this turn of the main loop.
struct AtspiAccessibility::Turn {
    atspi::Allowance allowance{readAllowance};
    std::optional<std::optional<qint64>> frontmostProcess;
    std::optional<std::pair<qint64, Result>> focusedElement;
    std::optional<bool> isPasswordFocused;
    std::optional<std::pair<ObjectReference, Description>> description;
    std::optional<std::pair<ObjectReference, Contents>> contents;
};

AtspiAccessibility::AtspiAccessibility(platform::Workspace& workspace, async::MainLoop& loop, platform::Log& log)
    : workspace_(workspace), loop_(loop), log_(log), tracker_(log) {}

AtspiAccessibility::~AtspiAccessibility() = default;

AtspiAccessibility::Turn& AtspiAccessibility::turn() {
    if (!turn_) {
        turn_ = std::make_unique<Turn>();
        loop_.post(lifetime_.guard([this] { turn_.reset(); }));
        if (const auto bus = tracker_.bus(0ms))
            directory_.enter(bus->generation);
    }
    return *turn_;
}

std::optional<qint64> AtspiAccessibility::frontmostProcess() {
    auto& known = turn().frontmostProcess;
    if (!known) {
        const auto application = workspace_.frontmostApplication();
        known.emplace(application ? std::optional(application->processIdentifier) : std::nullopt);
    }
    return *known;
}

AtspiAccessibility::Result AtspiAccessibility::copyAttribute(const AXElement& element, AXAttribute attribute) {
    switch (element.kind) {
        case Kind::SystemWide:
            if (attribute != AXAttribute::FocusedUIElement && attribute != AXAttribute::FocusedApplication)
                return std::unexpected(AXError::AttributeUnsupported);
            if (const auto process = frontmostProcess(); !process)
                return std::unexpected(AXError::NoValue);
            else if (attribute == AXAttribute::FocusedApplication)
                return platform::axApplicationElement(*process);
            else
                return focusedElementOf(*process);
        case Kind::Application:
            return ofApplication(element.processIdentifier, attribute);
        case Kind::Window:
            if (attribute != AXAttribute::Title)
                return std::unexpected(AXError::AttributeUnsupported);
            return titleOf(element.processIdentifier);
        case Kind::Object:
            return ofField(element, attribute);
    }
    return std::unexpected(AXError::IllegalArgument);
}

AtspiAccessibility::Result AtspiAccessibility::ofApplication(qint64 process, AXAttribute attribute) {
    if (attribute != AXAttribute::FocusedUIElement && attribute != AXAttribute::FocusedWindow)
        return std::unexpected(AXError::AttributeUnsupported);
    if (frontmostProcess() != process)
        return std::unexpected(AXError::NoValue);
    if (attribute == AXAttribute::FocusedWindow)
        return AXElement{Kind::Window, process, {}, {}};
    return focusedElementOf(process);
}

AtspiAccessibility::Result AtspiAccessibility::titleOf(qint64 process) {
    if (frontmostProcess() != process)
        return std::unexpected(AXError::NoValue);
    const auto title = workspace_.frontmostWindowTitle();
    if (!title)
        return std::unexpected(AXError::NoValue);
    return *title;
}

AtspiAccessibility::Result AtspiAccessibility::focusedElementOf(qint64 process) {
    if (process == QCoreApplication::applicationPid()) {
        const auto field = OwnField::focused();
        return field ? Result(field->element()) : std::unexpected(AXError::NoValue);
    }
    if (process == 0)
        return std::unexpected(AXError::NoValue);
    auto& known = turn().focusedElement;
    if (known && known->first == process)
        return known->second;
    atspi::AtspiCalls calls(tracker_, turn().allowance);
    atspi::AtspiFocusFinder finder(calls, directory_);
    const auto found =
        atspi::mapped(finder.focusedElementOf(process), [&](const ObjectReference& focused) -> platform::AXValue {
            const auto toolkit = directory_.toolkitOf(focused.busName, calls);
            const auto reference = toolkit ? atspi::innermostText(focused, *toolkit, calls) : focused;
            return AXElement{Kind::Object, 0, reference.busName, reference.path};
        });
    known.emplace(process, found);
    return found;
}

platform::FocusKind AtspiAccessibility::focusKind() {
    using platform::FocusKind;
    const auto process = frontmostProcess();
    if (process == QCoreApplication::applicationPid()) {
        const auto field = OwnField::focused();
        return field && field->isHidden() ? FocusKind::Password : FocusKind::Ordinary;
    }
    const auto focused = process ? focusedElementOf(*process) : std::unexpected(AXError::NoValue);
    if (!focused)
        return isPasswordFocused() ? FocusKind::Password : FocusKind::Unknown;
    const auto& description = descriptionOf(referenceOf(std::get<AXElement>(*focused)));
    if (!description)
        return FocusKind::Unknown;
    if (atspi::isPassword(description->role))
        return FocusKind::Password;
    return atspi::isTerminal(description->role) ? FocusKind::Terminal : FocusKind::Ordinary;
}

bool AtspiAccessibility::isPasswordFocused() {
    auto& known = turn().isPasswordFocused;
    if (!known) {
        atspi::AtspiCalls calls(tracker_, turn().allowance);
        known = atspi::AtspiFocusFinder(calls, directory_).isPasswordFocused();
    }
    return *known;
}

void AtspiAccessibility::onFocusChange(std::function<void()> handler) {
    focusHandler_ = std::move(handler);
    if (!focusHandler_)
        return tracker_.onFocus({});
    // The tracker calls on its own thread, and may do so while this object goes.
    tracker_.onFocus([&loop = loop_, told = lifetime_.guard([this] {
        if (focusHandler_)
            focusHandler_();
    })] { loop.post(told); });
}

const AtspiAccessibility::Description& AtspiAccessibility::descriptionOf(const ObjectReference& field) {
    auto& known = turn().description;
    if (!known || known->first != field) {
        atspi::AtspiCalls calls(tracker_, turn().allowance);
        known.emplace(field, atspi::FieldReader(calls, directory_).describe(field));
    }
    return known->second;
}

const AtspiAccessibility::Contents& AtspiAccessibility::contentsOf(const ObjectReference& field) {
    auto& known = turn().contents;
    if (field.busName.isEmpty()) {
        const auto own = ownField({Kind::Object, 0, {}, field.path});
        return known.emplace(field, own ? Contents(own->contents()) : std::unexpected(AXError::InvalidUIElement))
            .second;
    }
    if (!known || known->first != field) {
        atspi::AtspiCalls calls(tracker_, turn().allowance);
        atspi::FieldReader reader(calls, directory_);
        known.emplace(field, atspi::chain(descriptionOf(field),
                                          [&](const auto& description) { return reader.read(field, description); }));
    }
    return known->second;
}

AtspiAccessibility::Result AtspiAccessibility::ofField(const AXElement& element, AXAttribute attribute) {
    if (attribute == AXAttribute::Position || attribute == AXAttribute::Size)
        return isOwn(element) ? std::unexpected(AXError::AttributeUnsupported)
                              : frameOf(referenceOf(element), attribute);
    if (attribute != AXAttribute::Value && attribute != AXAttribute::SelectedText &&
        attribute != AXAttribute::SelectedTextRange)
        return std::unexpected(AXError::AttributeUnsupported);
    const auto& contents = contentsOf(referenceOf(element));
    if (!contents)
        return std::unexpected(contents.error());
    // A terminal's text is its screen, late and with what others wrote there, and its selection outlives what is typed.
    if (contents->isTerminal && attribute != AXAttribute::SelectedTextRange)
        return std::unexpected(AXError::AttributeUnsupported);
    if (attribute == AXAttribute::Value)
        return contents->value;
    if (!contents->selection)
        return std::unexpected(AXError::NoValue);
    if (attribute == AXAttribute::SelectedTextRange)
        return *contents->selection;
    auto selected = contents->value.mid(contents->selection->location, contents->selection->length);
    if (selected.contains(platform::axEmbeddedObject))  // it has its text elsewhere, or none
        return std::unexpected(AXError::NoValue);
    return selected;
}

AtspiAccessibility::Result AtspiAccessibility::copyParameterizedAttribute(const AXElement& element,
                                                                          AXAttribute attribute, Utf16Range range) {
    if (element.kind == Kind::Object && !isOwn(element) && attribute == AXAttribute::BoundsForRange)
        return boundsOf(referenceOf(element), range);
    if (element.kind != Kind::Object || attribute != AXAttribute::AttributedStringForRange)
        return std::unexpected(AXError::ParameterizedAttributeUnsupported);
    const auto& field = contentsOf(referenceOf(element));
    if (!field)
        return std::unexpected(field.error() == AXError::AttributeUnsupported
                                   ? AXError::ParameterizedAttributeUnsupported
                                   : field.error());
    if (field->isTerminal)
        return std::unexpected(AXError::ParameterizedAttributeUnsupported);
    if (range.location < 0 || range.length < 0 || range.location > field->value.size())
        return std::unexpected(AXError::IllegalArgument);
    return AXAttributedString{field->value.mid(range.location, range.length)};
}

AtspiAccessibility::Result AtspiAccessibility::frameOf(const ObjectReference& field, AXAttribute attribute) {
    atspi::AtspiCalls calls(tracker_, turn().allowance);
    const auto frame = atspi::FieldPlaces(calls, directory_, workspace_).frameOf(field);
    return atspi::mapped(frame, [attribute](const platform::AXRect& rectangle) -> platform::AXValue {
        if (attribute == AXAttribute::Position)
            return rectangle.origin;
        return rectangle.size;
    });
}

AtspiAccessibility::Result AtspiAccessibility::boundsOf(const ObjectReference& field, Utf16Range range) {
    const auto& read = contentsOf(field);
    if (!read)
        return std::unexpected(read.error());
    atspi::AtspiCalls calls(tracker_, turn().allowance);
    const auto bounds = atspi::FieldPlaces(calls, directory_, workspace_).boundsOf(field, read->value, range);
    return atspi::mapped(bounds, [](const platform::AXRect& rectangle) -> platform::AXValue { return rectangle; });
}

AXError AtspiAccessibility::setAttribute(const AXElement& element, AXAttribute attribute, const QString& value) {
    if (element.kind != Kind::Object || attribute != AXAttribute::SelectedText)
        return AXError::AttributeUnsupported;
    turn().contents.reset();
    if (isOwn(element)) {
        auto own = ownField(element);
        return own ? own->replaceSelection(value) : AXError::InvalidUIElement;
    }
    return atspi::FieldWriter(tracker_, directory_, log_).replaceSelection(referenceOf(element), value);
}

AXError AtspiAccessibility::replaceText(const AXElement& element, Utf16Range range, const QString& expected,
                                        const QString& text) {
    if (element.kind != Kind::Object)
        return AXError::AttributeUnsupported;
    turn().contents.reset();
    if (isOwn(element)) {
        auto own = ownField(element);
        return own ? own->replace(range, expected, text) : AXError::InvalidUIElement;
    }
    return atspi::FieldWriter(tracker_, directory_, log_).replace(referenceOf(element), {range, expected}, text);
}

}  // namespace tavrelon::desktop
