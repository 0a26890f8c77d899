#include "desktop/atspi/field_reader.h"

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;

namespace {

constexpr qint32 toTheEnd = -1;

QDBusMessage textCall(const ObjectReference& field) {
    return methodCall(field, textInterface, "GetText", {qint32{0}, toTheEnd});
}

}  // namespace

std::expected<FieldDescription, AXError> FieldReader::describe(const ObjectReference& field) {
    const auto replies = calls_.send(
        {methodCall(field, accessibleInterface, "GetInterfaces"), methodCall(field, accessibleInterface, "GetRole")});
    const auto interfaces = chain(replies[0], namesOf);
    const auto role = chain(replies[1], numberOf);
    if (!interfaces)
        return std::unexpected(interfaces.error());
    if (!role)
        return std::unexpected(role.error());
    return mapped(directory_.toolkitOf(field.busName, calls_),
                  [&](const Toolkit& toolkit) { return FieldDescription{*interfaces, *role, toolkit}; });
}

std::expected<FieldContents, AXError> FieldReader::read(const ObjectReference& field,
                                                        const FieldDescription& description) {
    if (isPassword(description.role))
        return std::unexpected(AXError::SecureField);
    if (!description.has(textInterface))
        return std::unexpected(AXError::AttributeUnsupported);
    std::vector messages{textCall(field), methodCall(field, textInterface, "GetSelection", {qint32{0}}),
                         propertyCall(field, textInterface, "CaretOffset")};
    if (description.toolkit.selectionEnds == SelectionEnds::ConvertedTwice)
        messages.push_back(methodCall(field, textInterface, "GetNSelections"));
    const auto replies = calls_.send(messages);
    const auto sent = chain(replies[0], textOf);
    if (!sent)
        return std::unexpected(sent.error());
    ReportedSelection reported;
    if (const auto ends = chain(replies[1], rangeOf))
        reported.ends = *ends;
    if (const auto caret = chain(replies[2], propertyOf))
        reported.caret = caret->toLongLong();
    if (replies.size() > 3)
        if (const auto count = chain(replies[3], signedNumberOf))
            reported.count = *count;
    FieldContents contents;
    contents.isTerminal = isTerminal(description.role);
    contents.value = shownText(*sent, description.toolkit.offsets);
    contents.selection = selectionOf(contents.value, reported, description.toolkit);
    // A value with the caret for a selection would pass for "nothing selected"; the copy shortcut tells better.
    if (!contents.selection && reported.count.value_or(0) > 0)
        return std::unexpected(AXError::NoValue);
    return contents;
}

std::expected<QString, AXError> FieldReader::readText(const ObjectReference& field, const Toolkit& toolkit) {
    return mapped(chain(calls_.send(textCall(field)), textOf),
                  [&](const QString& sent) { return shownText(sent, toolkit.offsets); });
}

}  // namespace tavrelon::desktop::atspi
