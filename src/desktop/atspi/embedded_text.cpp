#include "desktop/atspi/embedded_text.h"

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

namespace {

/// Lists in quotations in tables: more is no text that anybody writes.
constexpr int deepest = 12;

/// What stands for an element in the text at the caret; absent where the caret is in the text itself.
std::optional<ObjectReference> embeddedAtCaret(const ObjectReference& text, AtspiCalls& calls) {
    const auto replies = calls.send({propertyCall(text, textInterface, "CaretOffset"),
                                     methodCall(text, textInterface, "GetSelection", {qint32{0}})});
    const auto caret = chain(replies[0], propertyOf);
    const auto offset = caret ? caret->toInt() : -1;
    const auto selection = chain(replies[1], rangeOf);
    if (offset < 0 || (selection && std::abs(selection->second - selection->first) > 1))
        return std::nullopt;
    const auto next = calls.send({methodCall(text, textInterface, "GetText", {offset, offset + 1}),
                                  methodCall(text, hypertextInterface, "GetLinkIndex", {offset})});
    const auto character = chain(next[0], textOf);
    const auto index = chain(next[1], signedNumberOf);
    if (!character || *character != platform::axEmbeddedObject || !index || *index < 0)
        return std::nullopt;
    const auto link = chain(calls.send(methodCall(text, hypertextInterface, "GetLink", {*index})), objectOf);
    if (!link || link->isNull())
        return std::nullopt;
    const auto object = chain(calls.send(methodCall(*link, hyperlinkInterface, "GetObject", {qint32{0}})), objectOf);
    return object && !object->isNull() ? std::optional(*object) : std::nullopt;
}

}  // namespace

ObjectReference innermostText(const ObjectReference& field, const Toolkit& toolkit, AtspiCalls& calls) {
    auto found = field;
    for (int depth = 0; toolkit.richText == RichText::EmbeddedObjects && depth < deepest; ++depth) {
        const auto inner = embeddedAtCaret(found, calls);
        if (!inner)
            break;
        found = *inner;
    }
    return found;
}

}  // namespace tavrelon::desktop::atspi
