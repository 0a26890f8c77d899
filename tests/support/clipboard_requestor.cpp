#include "support/clipboard_requestor.h"

#include <QStringList>

namespace tavrelon::testing {

void ClipboardRequestor::request(const QString& target, const QString& selection) {
    xcb_convert_selection(peer_.xcb(), peer_.window(), peer_.atom(selection), peer_.atom(target), property(),
                          XCB_CURRENT_TIME);
    xcb_flush(peer_.xcb());
}

std::optional<ClipboardPeer::Property> ClipboardRequestor::answer() {
    const auto end = ClipboardPeer::Clock::now() + patience;
    while (ClipboardPeer::Clock::now() < end) {
        const auto event = peer_.nextEvent(patience);
        if (!event)
            return std::nullopt;
        if ((event->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
            continue;
        if (reinterpret_cast<const xcb_selection_notify_event_t&>(*event).property == XCB_ATOM_NONE)
            return std::nullopt;
        return peer_.takeProperty(property());
    }
    return std::nullopt;
}

std::optional<QByteArray> ClipboardRequestor::nextIncrement(std::chrono::milliseconds limit) {
    const auto end = ClipboardPeer::Clock::now() + limit;
    while (ClipboardPeer::Clock::now() < end) {
        const auto event = peer_.nextEvent(limit);
        if (!event)
            return std::nullopt;
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            continue;
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if (changed.state != XCB_PROPERTY_NEW_VALUE || changed.atom != property())
            continue;
        auto increment = peer_.takeProperty(property());
        if (!increment.type.isEmpty())
            return increment.bytes;
    }
    return std::nullopt;
}

std::optional<ClipboardPeer::Property> ClipboardRequestor::fetch(const QString& target) {
    request(target);
    auto first = answer();
    if (!first || first->type != QStringLiteral("INCR"))
        return first;
    ClipboardPeer::Property whole{.type = target, .bytes = {}};
    for (;;) {
        const auto increment = nextIncrement();
        if (!increment)
            return std::nullopt;
        if (increment->isEmpty())
            return whole;
        whole.bytes += *increment;
    }
}

std::vector<std::optional<ClipboardPeer::Property>> ClipboardRequestor::fetchMultiple(const QStringList& targets) {
    std::vector<std::uint32_t> pairs;
    for (qsizetype i = 0; i < targets.size(); ++i) {
        pairs.push_back(peer_.atom(targets[i]));
        pairs.push_back(peer_.atom(QStringLiteral("TEST_PART_%1").arg(i)));
    }
    peer_.put(peer_.window(), property(), QStringLiteral("ATOM_PAIR"), 32, bytesOf(pairs));
    request(QStringLiteral("MULTIPLE"));
    const auto answered = answer();
    std::vector<std::optional<ClipboardPeer::Property>> found(static_cast<std::size_t>(targets.size()));
    if (!answered)
        return found;
    const auto results = numbersOf(answered->bytes);
    for (std::size_t i = 0; i < found.size() && 2 * i + 1 < results.size(); ++i) {
        if (const auto part = results[2 * i + 1]; part != XCB_ATOM_NONE)
            found[i] = peer_.takeProperty(part);
    }
    return found;
}

QStringList ClipboardRequestor::targets() {
    QStringList names;
    const auto list = fetch(QStringLiteral("TARGETS"));
    if (!list)
        return names;
    for (const auto atom : numbersOf(list->bytes))
        names.push_back(peer_.nameOf(atom));
    return names;
}

}  // namespace tavrelon::testing
