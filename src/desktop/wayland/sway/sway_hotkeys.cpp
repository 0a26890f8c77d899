#include "desktop/wayland/sway/sway_hotkeys.h"

#include <algorithm>

#include "keys/key_names.h"

namespace tavrelon::desktop {

using platform::WantedHotkey;

namespace {

const QString mark = QStringLiteral("nop tavrelon ");
const QString defaultMode = QStringLiteral("default");

QString nameOf(const keys::HotkeyConfig& hotkey, WantedHotkey::Fires fires) {
    return keys::plainName(hotkey.keyCode, hotkey.modifiers & keys::relevantModifierMask,
                           fires == WantedHotkey::Fires::OnPress ? keys::ZeroKey::A : keys::ZeroKey::None);
}

QString changeOf(const text::Json& event) {
    return text::optionalString(event, "change").value_or(QString());
}

}  // namespace

SwayHotkeys::~SwayHotkeys() {
    stop();
    if (guardian_ && isAllGivenBack_)
        guardian_->dismiss();
}

std::expected<void, platform::HotkeysError> SwayHotkeys::start(Handler handler) {
    stop();
    auto commands = SwayIpc::open();
    auto events = SwayIpc::open();
    if (!commands || !events)
        return std::unexpected(platform::HotkeysError{commands ? events.error() : commands.error()});
    if (!(*events)->ask(SwayMessage::Subscribe, R"(["binding","workspace","mode","input"])"))
        return std::unexpected(platform::HotkeysError{QStringLiteral("sway does not tell of its bindings.")});
    commands_ = *std::move(commands);
    events_ = *std::move(events);
    handler_ = std::move(handler);
    notifier_ = std::make_unique<QSocketNotifier>(events_->descriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { readable(); });
    if (!guardian_)
        guardian_.emplace(log_);
    SwayLeftOvers::remove(*commands_);
    learnUsersKeys();
    apply();
    return {};
}

void SwayHotkeys::stop() {
    handler_ = nullptr;
    if (commands_)
        unbindAllBut([](const QString&, const Bound&) { return false; });
    // What is still bound is left to the guardian and the next start.
    isAllGivenBack_ = bound_.empty();
    if (isAllGivenBack_)
        leftOvers_.forget();
    bound_.clear();
    endEvents();
    commands_.reset();
}

void SwayHotkeys::endEvents() {
    notifier_.reset();
    events_.reset();
}

void SwayHotkeys::declare(const std::vector<WantedHotkey>& wanted) {
    wanted_ = wanted;
    apply();
}

std::vector<keys::HotkeyConfig> SwayHotkeys::heldElsewhere(const std::vector<keys::HotkeyConfig>& hotkeys) {
    const auto ipc = SwayIpc::open();
    if (!ipc)
        return {};
    const auto bound = combinationsOfUser(**ipc);
    std::vector<keys::HotkeyConfig> held;
    std::ranges::copy_if(hotkeys, std::back_inserter(held), [&](const keys::HotkeyConfig& hotkey) {
        return isAmong(bound, {.keys = hotkey, .fires = WantedHotkey::Fires::OnPress});
    });
    return held;
}

void SwayHotkeys::learnUsersKeys() {
    users_ = combinationsOfUser(*commands_);
    layouts_ = layoutsInUse(*commands_);
    mode_ = modeInForce(*commands_);
}

std::size_t SwayHotkeys::numberOf(const WantedHotkey& hotkey) {
    const auto found = std::ranges::find(known_, hotkey);
    if (found != known_.end())
        return static_cast<std::size_t>(found - known_.begin());
    known_.push_back(hotkey);
    return known_.size() - 1;
}

/// What is to be bound, by the first of what is tried for it.
std::map<QString, SwayHotkeys::Target> SwayHotkeys::targets() {
    std::map<QString, Target> found;
    const auto report = [this](const QString& line) {
        if (reported_.insert(line).second)
            log_.line(line);
    };
    for (const auto& hotkey : wanted_) {
        const auto name = nameOf(hotkey.keys, hotkey.fires);
        if (isAmong(users_, hotkey)) {
            report(QStringLiteral("[Hotkey] %1 is bound in sway's configuration").arg(name));
            continue;
        }
        const auto bindings = swayBindingsOf(hotkey, layouts_);
        if (bindings.empty())
            report(QStringLiteral("[Hotkey] %1 is on no key").arg(name));
        // Of two hotkeys with the same keys the first has them.
        for (const auto& binding : bindings)
            found.emplace(binding.tries.front(), Target{numberOf(hotkey), binding});
    }
    return found;
}

void SwayHotkeys::apply() {
    // Bindings are made in the mode that is in force.
    if (!commands_ || mode_ != defaultMode)
        return;
    const auto wanted = targets();
    unbindAllBut([&](const QString& keys, const Bound& bound) {
        const auto target = wanted.find(keys);
        return target != wanted.end() && target->second.hotkey == bound.hotkey;
    });
    for (const auto& [keys, target] : wanted)
        if (!bound_.contains(keys) && !commands_->isBroken())
            bind(keys, target);
}

/// One that sway does not answer for is tried again the next time, for a sway that hangs may cost one wait only.
void SwayHotkeys::unbindAllBut(const std::function<bool(const QString&, const Bound&)>& isKept) {
    bool isAnswering = true;
    std::erase_if(bound_, [&](const auto& each) {
        if (!isAnswering || isKept(each.first, each.second))
            return false;
        commands_->run(unbinding(each.second.made));
        isAnswering = !commands_->isBroken();
        return isAnswering;
    });
}

void SwayHotkeys::bind(const QString& keys, const Target& target) {
    const auto command = u' ' + mark + QString::number(target.hotkey);
    for (const auto& tried : target.binding.tries) {
        leftOvers_.remember(tried);
        if (commands_->run(tried + command)) {
            bound_[keys] = {target.hotkey, tried};
            return;
        }
    }
    const auto& hotkey = known_[target.hotkey];
    if (reported_.insert(keys).second)
        log_.line(QStringLiteral("[Hotkey] sway does not bind %1").arg(nameOf(hotkey.keys, hotkey.fires)));
}

void SwayHotkeys::readable() {
    const auto answers = events_->arrived();
    if (!answers) {
        log_.line(QStringLiteral("[Hotkey] sway is gone; no hotkey works any more"));
        notifier_->setEnabled(false);
        return;
    }
    for (const auto& answer : *answers)
        try {
            happened(answer);
        } catch (const text::JsonError& error) {
            log_.line(QStringLiteral("[Hotkey] sway tells something unknown: %1").arg(error.localizedDescription()));
        }
}

void SwayHotkeys::happened(const SwayAnswer& event) {
    const auto json = text::parseJson(event.document);
    if (event.kind == SwayMessage::BindingEvent) {
        pressed(json);
    } else if (event.kind == SwayMessage::ModeEvent) {
        mode_ = changeOf(json);
        apply();
    } else if (event.kind == SwayMessage::WorkspaceEvent && changeOf(json) == u"reload") {
        bound_.clear();  // they went with the configuration
        learnUsersKeys();
        apply();
    } else if (event.kind == SwayMessage::InputEvent) {
        const auto* input = text::find(json, "input");
        const auto* names = input ? text::find(*input, "xkb_layout_names") : nullptr;
        const auto count = names ? static_cast<int>(text::arrayFrom(*names).size()) : 0;
        if (count > layouts_) {
            layouts_ = count;
            apply();
        }
    }
}

void SwayHotkeys::pressed(const text::Json& event) {
    const auto command = text::stringFrom(text::required(text::required(event, "binding"), "command"));
    bool isNumber = false;
    const auto number = command.startsWith(mark) ? command.sliced(mark.size()).toULongLong(&isNumber) : 0;
    if (!isNumber || number >= known_.size())
        return;
    // In a turn of its own: the handler may stop all this.
    loop_.post(lifetime_.guard([this, hotkey = known_[number]] {
        if (handler_)
            handler_(hotkey);
    }));
}

}  // namespace tavrelon::desktop
