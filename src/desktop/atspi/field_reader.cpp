#include "desktop/atspi/field_reader.h"

#include <algorithm>

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;

namespace {

constexpr qint32 toTheEnd = -1;

QDBusMessage textCall(const ObjectReference& field) {
    return methodCall(field, textInterface, "GetText", {qint32{0}, toTheEnd});
}

bool touchesEdge(const FieldContents& contents) {
    const auto& selection = contents.selection;
    return selection && selection->length > 0 &&
           (selection->location == 0 || selection->location + selection->length == contents.value.size());
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
    if (description.role == static_cast<quint32>(Role::Paragraph) && touchesEdge(contents) && goesOn(field))
        return std::unexpected(AXError::NoValue);
    return contents;
}

bool FieldReader::goesOn(const ObjectReference& paragraph) {
    const auto replies = calls_.send({propertyCall(paragraph, accessibleInterface, "Parent"),
                                      methodCall(paragraph, accessibleInterface, "GetIndexInParent")});
    const auto parent = chain(replies[0], objectInPropertyOf);
    const auto index = chain(replies[1], signedNumberOf);
    if (!parent || !index)
        return false;
    std::vector<QDBusMessage> questions;
    for (const auto& neighbour :
         calls_.send({methodCall(*parent, accessibleInterface, "GetChildAtIndex", {*index - 1}),
                      methodCall(*parent, accessibleInterface, "GetChildAtIndex", {*index + 1})}))
        if (const auto object = chain(neighbour, objectOf); object && !object->isNull())
            questions.push_back(methodCall(*object, textInterface, "GetNSelections"));
    return std::ranges::any_of(calls_.send(questions),
                               [](const auto& reply) { return chain(reply, signedNumberOf).value_or(0) > 0; });
}

std::expected<QString, AXError> FieldReader::readText(const ObjectReference& field, const Toolkit& toolkit) {
    return mapped(chain(calls_.send(textCall(field)), textOf),
                  [&](const QString& sent) { return shownText(sent, toolkit.offsets); });
}

}  // namespace tavrelon::desktop::atspi
