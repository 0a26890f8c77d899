#include "desktop/atspi/atspi_focus_finder.h"

#include <algorithm>
#include <ranges>

#include "desktop/atspi/chain.h"

namespace tavrelon::desktop::atspi {

using platform::AXError;

namespace {

/// Bounds of a walk, far above what windows of editors have.
constexpr std::size_t mostNodes = 3000;
constexpr std::size_t mostChildren = 500;

}  // namespace

std::expected<ObjectReference, AXError> AtspiFocusFinder::focusedElementOf(qint64 process) {
    if (hungApplicationHas(process))
        return std::unexpected(AXError::CannotComplete);
    const auto tracked = trackedElementOf(process);
    if (tracked) {
        const auto states = chain(calls_.send(methodCall(*tracked, accessibleInterface, "GetState")), statesOf);
        if (states && states->has(State::Focused))
            return *tracked;
        if (!states && states.error() == AXError::CannotComplete)
            return std::unexpected(states.error());
    }
    const auto found = walk(process);
    if (!found)
        return std::unexpected(found.error());
    // Containers may claim the focus of what is in them, and an application that is starting may show no more than
    // that yet; they must not stand in the way of a later look.
    if (found->holdsText)
        calls_.tracker().adopt(found->object, tracked);
    return found->object;
}

bool AtspiFocusFinder::hungApplicationHas(qint64 process) const {
    return std::ranges::any_of(calls_.tracker().hungNames(),
                               [&](const QString& name) { return directory_.isKnownAs(process, name); });
}

std::optional<ObjectReference> AtspiFocusFinder::trackedElementOf(qint64 process) {
    const auto elements = directory_.ofProcess(process, calls_.tracker().focusedElements(), calls_);
    return elements.empty() ? std::nullopt : std::optional(elements.front());
}

bool AtspiFocusFinder::isPasswordFocused() {
    auto fields = describe(calls_.tracker().focusedElements());
    std::erase_if(fields,
                  [](const Node& field) { return !field.states.has(State::Focused) || !isPassword(field.role); });
    return std::ranges::any_of(fields, [&](const Node& field) { return !activeWindows(field.object.busName).empty(); });
}

AtspiFocusFinder::Found AtspiFocusFinder::walk(qint64 process) {
    const auto all = directory_.applications(calls_);
    if (!all)
        return std::unexpected(all.error());
    Found result = std::unexpected(AXError::NoValue);
    for (const auto& application : directory_.ofProcess(process, *all, calls_)) {
        result = walkApplication(application.busName);
        if (result)
            return result;
    }
    return result;
}

AtspiFocusFinder::Found AtspiFocusFinder::walkApplication(const QString& busName) {
    const auto toolkit = directory_.toolkitOf(busName, calls_);
    if (!toolkit)
        return std::unexpected(toolkit.error());
    std::optional<ObjectReference> withoutText;
    std::size_t seen = 0;
    auto level = activeWindows(busName);
    while (!level.empty() && seen < mostNodes) {
        level.resize(std::min(level.size(), mostNodes - seen));
        seen += level.size();
        auto nodes = describe(level);
        for (const auto& node : nodes)
            if (node.states.has(State::Focused)) {
                if (holdsText(node.object))
                    return Finding{node.object, true};
                if (!withoutText)
                    withoutText = node.object;
            }
        std::erase_if(nodes, [&](const Node& node) {
            const bool hidden = toolkit->showing == ShowingState::Set && !node.states.has(State::Showing);
            return hidden || isMenu(node.role) || node.states.has(State::ManagesDescendants);
        });
        level = childrenOf(nodes);
    }
    if (withoutText)
        return Finding{*withoutText, false};
    const bool silent = calls_.tracker().isHung(busName) || calls_.allowance().left().count() == 0;
    return std::unexpected(silent ? AXError::CannotComplete : AXError::NoValue);
}

AtspiFocusFinder::Objects AtspiFocusFinder::activeWindows(const QString& busName) {
    const Node application{{busName, QLatin1String(rootPath)}, {}, 0};
    Objects active;
    for (const auto& window : describe(childrenOf({application})))
        if (window.states.has(State::Active))
            active.push_back(window.object);
    return active;
}

std::vector<AtspiFocusFinder::Node> AtspiFocusFinder::describe(const Objects& objects) {
    std::vector<QDBusMessage> questions;
    for (const auto& object : objects) {
        questions.push_back(methodCall(object, accessibleInterface, "GetState"));
        questions.push_back(methodCall(object, accessibleInterface, "GetRole"));
    }
    const auto replies = calls_.send(questions);
    std::vector<Node> nodes;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const auto states = chain(replies[2 * i], statesOf);
        const auto role = chain(replies[2 * i + 1], numberOf);
        if (states && role)
            nodes.push_back({objects[i], *states, *role});
    }
    return nodes;
}

AtspiFocusFinder::Objects AtspiFocusFinder::childrenOf(const std::vector<Node>& nodes) {
    std::vector<QDBusMessage> questions;
    for (const auto& node : nodes)
        questions.push_back(methodCall(node.object, accessibleInterface, "GetChildren"));
    Objects children;
    for (const auto& reply : calls_.send(questions))
        if (const auto objects = chain(reply, objectsOf))
            for (const auto& child : *objects | std::views::take(mostChildren))
                if (!child.isNull())
                    children.push_back(child);
    return children;
}

bool AtspiFocusFinder::holdsText(const ObjectReference& object) {
    const auto interfaces = chain(calls_.send(methodCall(object, accessibleInterface, "GetInterfaces")), namesOf);
    return interfaces && interfaces->contains(QLatin1String(textInterface));
}

}  // namespace tavrelon::desktop::atspi
