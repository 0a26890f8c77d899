#include "desktop/atspi/atspi_calls.h"

#include <QDBusPendingCall>
#include <array>

#include "desktop/atspi/chain.h"
#include "desktop/linux/process/process_info.h"

namespace tavrelon::desktop::atspi {

using namespace std::chrono_literals;
using platform::AXError;
using std::chrono::steady_clock;

namespace {

/// Less than this says nothing about the application that did not answer in time.
constexpr auto telling = 100ms;

constexpr auto busDaemon = "org.freedesktop.DBus";

bool changesSomething(const QDBusMessage& message) {
    static constexpr std::array readers{QLatin1String("Get"),
                                        QLatin1String("GetState"),
                                        QLatin1String("GetText"),
                                        QLatin1String("GetSelection"),
                                        QLatin1String("GetChildren"),
                                        QLatin1String("GetRole"),
                                        QLatin1String("GetInterfaces"),
                                        QLatin1String("GetConnectionUnixProcessID"),
                                        QLatin1String("GetLinkIndex"),
                                        QLatin1String("GetLink"),
                                        QLatin1String("GetObject"),
                                        QLatin1String("GetIndexInParent"),
                                        QLatin1String("GetChildAtIndex"),
                                        QLatin1String("GetNSelections")};
    return std::ranges::none_of(readers, [&](QLatin1String reader) { return message.member() == reader; });
}

}  // namespace

std::vector<AtspiCalls::Reply> AtspiCalls::send(const std::vector<QDBusMessage>& messages) {
    std::vector<Reply> replies(messages.size(), std::unexpected(AXError::CannotComplete));
    const auto start = steady_clock::now();
    const auto bus = tracker_.bus(allowance_.left());
    if (!bus)
        return std::vector<Reply>(messages.size(), std::unexpected(AXError::APIDisabled));

    const auto patience = std::chrono::floor<std::chrono::milliseconds>(allowance_.left());
    std::vector<std::optional<QDBusPendingCall>> pending(messages.size());
    for (std::size_t i = 0; i < messages.size(); ++i)
        if (patience > 0ms && !tracker_.isHung(messages[i].service()))
            pending[i] = bus->connection.asyncCall(messages[i], static_cast<int>(patience.count()));

    for (std::size_t i = 0; i < messages.size(); ++i) {
        if (!pending[i])
            continue;
        pending[i]->waitForFinished();
        const QDBusMessage reply = pending[i]->reply();
        if (reply.type() == QDBusMessage::ReplyMessage) {
            replies[i] = reply;
            continue;
        }
        replies[i] = std::unexpected(errorOf(reply.errorName()));
        if (replies[i].error() == AXError::CannotComplete && patience >= telling)
            markHung(messages[i]);
    }
    allowance_.spend(steady_clock::now() - start);
    return replies;
}

void AtspiCalls::markHung(const QDBusMessage& message) {
    // The very call that got no answer is the best question to ask again, if asking does no harm.
    const bool harmless = !changesSomething(message);
    const ObjectReference object{message.service(), message.path()};
    tracker_.markHung(message.service(), harmless ? message : methodCall(object, accessibleInterface, "GetState"));
}

void AtspiDirectory::enter(quint64 generation) {
    if (generation == generation_)
        return;
    generation_ = generation;
    applications_.reset();
    owners_.clear();
    toolkits_.clear();
}

std::expected<std::vector<ObjectReference>, AXError> AtspiDirectory::applications(AtspiCalls& calls) {
    // Taken before the question, so that what joins while it is under way is asked for again.
    const auto revision = calls.tracker().applicationsRevision();
    if (applications_ && revision == applicationsRevision_)
        return *applications_;
    const ObjectReference desktop{QLatin1String(registryName), QLatin1String(rootPath)};
    auto all = chain(calls.send(methodCall(desktop, accessibleInterface, "GetChildren")), objectsOf);
    if (!all)
        return std::unexpected(all.error());
    std::erase_if(*all, [](const ObjectReference& application) { return application.isNull(); });
    applicationsRevision_ = revision;
    applications_ = *all;
    return *all;
}

std::vector<ObjectReference> AtspiDirectory::ofProcess(qint64 process, std::vector<ObjectReference> elements,
                                                       AtspiCalls& calls) {
    std::vector<QString> unknown;
    std::vector<QDBusMessage> questions;
    for (const auto& element : elements)
        if (!owners_.contains(element.busName)) {
            unknown.push_back(element.busName);
            questions.push_back(methodCall({QLatin1String(busDaemon), QStringLiteral("/org/freedesktop/DBus")},
                                           busDaemon, "GetConnectionUnixProcessID", {element.busName}));
        }
    const auto replies = calls.send(questions);
    for (std::size_t i = 0; i < replies.size(); ++i)
        if (const auto owner = chain(replies[i], numberOf))
            owners_.insert_or_assign(unknown[i], Owner{*owner, sandboxOf(*owner)});
    const auto sandbox = sandboxOf(process);
    std::erase_if(elements, [&](const ObjectReference& element) {
        const auto owner = owners_.find(element.busName);
        return owner == owners_.end() || !owner->second.isOf(process, sandbox);
    });
    return elements;
}

bool AtspiDirectory::isKnownAs(qint64 process, const QString& busName) const {
    const auto owner = owners_.find(busName);
    return owner != owners_.end() && owner->second.isOf(process, sandboxOf(process));
}

std::expected<Toolkit, AXError> AtspiDirectory::toolkitOf(const QString& busName, AtspiCalls& calls) {
    if (const auto known = toolkits_.find(busName); known != toolkits_.end())
        return known->second;
    const ObjectReference root{busName, QLatin1String(rootPath)};
    const auto name = chain(calls.send(propertyCall(root, applicationInterface, "ToolkitName")), propertyOf);
    if (!name && name.error() == AXError::CannotComplete)
        return std::unexpected(name.error());
    const auto toolkit = toolkitNamed(name ? name->toString() : QString());
    toolkits_.emplace(busName, toolkit);
    return toolkit;
}

}  // namespace tavrelon::desktop::atspi
