#include "desktop/kwin/keys/global_accel.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QList>
#include <algorithm>

namespace tavrelon::desktop {

/// Up to four keys one after the other; the rest of them is 0.
struct GlobalKeySequence {
    QList<int> keys;
};

// As the bus's library looks for them.
static QDBusArgument& operator<<(QDBusArgument& argument, const GlobalKeySequence& sequence) {
    argument.beginStructure();
    argument << sequence.keys;
    argument.endStructure();
    return argument;
}

static const QDBusArgument& operator>>(const QDBusArgument& argument, GlobalKeySequence& sequence) {
    argument.beginStructure();
    argument >> sequence.keys;
    argument.endStructure();
    // NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): the library asks for this form.
    return argument;
}

}  // namespace tavrelon::desktop

Q_DECLARE_METATYPE(tavrelon::desktop::GlobalKeySequence)

namespace tavrelon::desktop {

namespace {

using Sequences = QList<GlobalKeySequence>;

const QString componentName = QStringLiteral("tavrelon");
const QString ownName = QStringLiteral("Tavrelon");
const KWinBus::Address registry{.service = GlobalAccel::service,
                                .path = QStringLiteral("/kglobalaccel"),
                                .interface = QStringLiteral("org.kde.KGlobalAccel")};

/// The action is in force, and what was saved of an earlier run does not count.
constexpr uint setPresent = 2;
constexpr uint noAutoloading = 4;

QVariant sequenceOf(int key) {
    return QVariant::fromValue(GlobalKeySequence{{key, 0, 0, 0}});
}

}  // namespace

GlobalAccel::GlobalAccel(std::shared_ptr<KWinBus> bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<GlobalKeySequence>();
    qDBusRegisterMetaType<Sequences>();
}

bool GlobalAccel::isThere() {
    return !bus_->ownerOf(service).isEmpty();
}

GlobalAccel::Outcome GlobalAccel::hold(const QString& action, const QString& friendlyName,
                                       const std::vector<int>& keys) {
    const QStringList id{componentName, action, ownName, friendlyName};
    if (!bus_->call(registry, QStringLiteral("doRegister"), {id}))
        return Outcome::NoAnswer;
    Sequences wanted;
    for (const int key : keys)
        wanted.append({{key, 0, 0, 0}});
    const auto answer = bus_->call(registry, QStringLiteral("setShortcutKeys"),
                                   {id, QVariant::fromValue(wanted), setPresent | noAutoloading});
    const auto held = answer && !answer->isEmpty() ? qdbus_cast<Sequences>(answer->front()) : Sequences();
    const auto count = std::ranges::count_if(
        held, [](const GlobalKeySequence& each) { return !each.keys.isEmpty() && each.keys.front() != 0; });
    if (count == static_cast<std::ptrdiff_t>(keys.size()))
        return Outcome::Held;
    letGo(action);
    return answer ? Outcome::Taken : Outcome::NoAnswer;
}

bool GlobalAccel::letGo(const QString& action) {
    return bus_->call(registry, QStringLiteral("unregister"), {componentName, action}).has_value();
}

void GlobalAccel::letGoOfAll() {
    const auto answer = bus_->call(component, QStringLiteral("shortcutNames"));
    const auto actions = answer && !answer->isEmpty() ? answer->front().toStringList() : QStringList();
    for (const auto& action : actions)
        if (!letGo(action))
            return;
}

bool GlobalAccel::isFree(int key) {
    const auto answer = bus_->call(registry, QStringLiteral("globalShortcutAvailable"), {sequenceOf(key), QString()});
    return !answer || answer->isEmpty() || answer->front().toBool();
}

}  // namespace tavrelon::desktop
