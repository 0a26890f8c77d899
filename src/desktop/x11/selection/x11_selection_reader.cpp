#include "desktop/x11/selection/x11_selection_reader.h"

#include <algorithm>
#include <utility>

namespace tavrelon::desktop {

using platform::PasteboardError;

namespace {

constexpr std::size_t mostTargets = 4096;

/// What another form of the same picture or text may cost: a screen in every format of a toolkit is 80 MB and takes
/// seconds to encode.
constexpr qsizetype mostBytesOfAnotherForm = qsizetype{16} << 20;
constexpr auto answerForAnotherForm = std::chrono::milliseconds(300);

bool isPlainText(const QString& target) {
    return textTargets().contains(target, Qt::CaseInsensitive);
}

/// Text or picture; empty for what has no second form.
QString familyOf(const QString& target) {
    const auto family = target.section(u'/', 0, 0);
    const bool hasForms = family == QStringLiteral("text") || family == QStringLiteral("image");
    return hasForms ? family : QString();
}

}  // namespace

SelectionConversion::SelectionConversion(SelectionConnection& connection, xcb_window_t window, xcb_atom_t target,
                                         xcb_timestamp_t time, qsizetype mostBytes)
    : connection_(connection), window_(window), target_(target), mostBytes_(mostBytes) {
    const auto& atoms = connection_.atoms();
    xcb_delete_property(connection_.xcb(), window_, atoms.transfer);
    xcb_convert_selection(connection_.xcb(), window_, atoms.selection, target_, atoms.transfer, time);
}

void SelectionConversion::selectionNotify(const xcb_selection_notify_event_t& event) {
    if (state_ != State::Waiting || event.requestor != window_ || event.target != target_)
        return;
    lastProgress_ = SelectionClock::now();
    if (event.property == XCB_ATOM_NONE) {
        state_ = State::Refused;
        return;
    }
    const auto& atoms = connection_.atoms();
    // To delete the property after its reading is also what starts a transfer in increments.
    value_ = connection_.readProperty(window_, atoms.transfer, SelectionConnection::AfterRead::Delete, mostBytes_);
    if (value_.type == atoms.incr) {
        const auto announced = value_.atoms();
        const bool tooLarge = !announced.empty() && static_cast<qsizetype>(announced.front()) > mostBytes_;
        value_ = {};
        state_ = tooLarge ? State::TooLarge : State::Increments;
    } else if (value_.truncated) {
        state_ = State::TooLarge;
    } else {
        state_ = value_.type == XCB_ATOM_NONE ? State::Refused : State::Done;
    }
}

void SelectionConversion::propertyChanged(xcb_atom_t property) {
    if (state_ == State::Increments && property == connection_.atoms().transfer)
        receiveIncrement();
}

void SelectionConversion::receiveIncrement() {
    const auto room = mostBytes_ - value_.bytes.size();
    auto increment =
        connection_.readProperty(window_, connection_.atoms().transfer, SelectionConnection::AfterRead::Delete, room);
    if (increment.type == XCB_ATOM_NONE)  // the news of a property that we have fetched already
        return;
    lastProgress_ = SelectionClock::now();
    value_.type = increment.type;
    value_.format = increment.format;
    if (increment.bytes.isEmpty())
        state_ = State::Done;
    else if (increment.truncated || increment.bytes.size() > room)
        state_ = State::TooLarge;
    else
        value_.bytes += increment.bytes;
}

SelectionReader::SelectionReader(SelectionConnection& connection, Kind kind, const SelectionReadLimits& limits)
    : connection_(connection),
      kind_(kind),
      limits_(limits),
      end_(SelectionClock::now() + limits.total),
      window_(connection.createWindow()),
      owner_(connection.ownerOf(connection.atoms().selection)) {
    if (owner_ == XCB_NONE) {
        outcome_ = SelectionFindings{};
        return;
    }
    time_ = connection_.serverTime();
    // For a text too: some owners answer a target that they do not list, with whatever they have.
    ask(connection_.atoms().targets);
}

SelectionReader::~SelectionReader() {
    xcb_destroy_window(connection_.xcb(), window_);
}

void SelectionReader::ask(xcb_atom_t target) {
    const auto room = limits_.bytes - receivedBytes_;
    isAnotherForm_ = keepsFamilyOf(connection_.nameOf(target));
    conversion_.emplace(connection_, window_, target, time_,
                        isAnotherForm_ ? std::min(room, mostBytesOfAnotherForm) : room);
}

bool SelectionReader::keepsFamilyOf(const QString& target) const {
    const auto family = familyOf(target);
    return !family.isEmpty() && std::ranges::any_of(findings_.item.dataByType,
                                                    [&](const auto& kept) { return familyOf(kept.first) == family; });
}

void SelectionReader::selectionNotify(const xcb_selection_notify_event_t& event) {
    if (outcome_ || !conversion_)
        return;
    conversion_->selectionNotify(event);
    proceed();
}

void SelectionReader::propertyChanged(xcb_window_t window, xcb_atom_t property) {
    if (outcome_ || !conversion_ || window != window_)
        return;
    conversion_->propertyChanged(property);
    proceed();
}

void SelectionReader::windowGone(xcb_window_t window) {
    if (!outcome_ && window == owner_)
        fail(PasteboardError::Failed);
}

void SelectionReader::proceed() {
    switch (conversion_->state()) {
        case SelectionConversion::State::Waiting:
            return;
        case SelectionConversion::State::Increments:
            heardFromOwner_ = true;
            return;
        case SelectionConversion::State::TooLarge:
            heardFromOwner_ = true;
            if (kind_ == Kind::Text)
                fail(PasteboardError::TooLarge);
            else
                leaveOut(PasteboardError::TooLarge);
            return;
        case SelectionConversion::State::Done:
        case SelectionConversion::State::Refused:
            heardFromOwner_ = true;
            take(std::move(*conversion_));
    }
}

void SelectionReader::take(SelectionConversion conversion) {
    conversion_.reset();
    const bool refused = conversion.state() == SelectionConversion::State::Refused;
    if (conversion.target() == connection_.atoms().targets) {
        // An owner that does not even list its targets may still have a text.
        if (refused)
            remaining_ = kind_ == Kind::Text ? textTargets()
                                             : QStringList{QStringLiteral("UTF8_STRING"), QStringLiteral("STRING")};
        else
            takeTargets(conversion.value().atoms());
    } else if (refused) {
        lost_.emplace_back(connection_.nameOf(conversion.target()), PasteboardError::Failed);
    } else {
        receivedBytes_ += conversion.value().bytes.size();
        takeData(connection_.nameOf(conversion.target()), conversion.value());
    }
    if (!outcome_)
        askNext();
}

void SelectionReader::takeTargets(const std::vector<std::uint32_t>& atoms) {
    const auto listed = std::span(atoms).first(std::min(atoms.size(), mostTargets));
    QStringList names;
    for (const auto& name : connection_.namesOf(listed)) {
        if (!name.isEmpty() && !isMetaTarget(name) && !names.contains(name))
            names.push_back(name);
    }
    if (kind_ == Kind::Text) {
        for (const auto& target : textTargets()) {
            const auto place = std::ranges::find_if(
                names, [&](const QString& name) { return name.compare(target, Qt::CaseInsensitive) == 0; });
            if (place != names.end())
                remaining_.push_back(*place);
        }
        return;
    }
    // TEXT leaves the type to the owner; beside a text of a known type it would only repeat it.
    if (names.contains(QStringLiteral("UTF8_STRING")) || names.contains(QStringLiteral("STRING")))
        names.removeAll(QStringLiteral("TEXT"));
    remaining_ = std::move(names);
}

void SelectionReader::takeData(const QString& target, const PropertyValue& value) {
    const auto type = connection_.nameOf(value.type);
    if (kind_ == Kind::Text) {
        findings_.text = decodeText(type, value.bytes);
        if (!findings_.text)
            findings_.text = decodeText(target, value.bytes);
        if (findings_.text)
            outcome_ = std::move(findings_);
        return;
    }
    const auto name = target == QStringLiteral("TEXT") ? type : target;
    findings_.item.dataByType.emplace_back(name, value.bytes);
    findings_.forms.insert(name, {.type = type, .format = value.format});
}

void SelectionReader::askNext() {
    if (remaining_.isEmpty()) {
        finish();
        return;
    }
    ask(connection_.atom(remaining_.takeFirst()));
}

void SelectionReader::leaveOut(PasteboardError why) {
    lost_.emplace_back(connection_.nameOf(conversion_->target()), why);
    conversion_.reset();
    renewWindow();
    askNext();
}

bool SelectionReader::keepsWhatMatters(const QString& lost) const {
    const auto& kept = findings_.item.dataByType;
    if (kept.empty() || std::ranges::any_of(kept, [](const auto& form) { return isPlainText(form.first); }))
        return !kept.empty();
    return familyOf(lost).isEmpty() || keepsFamilyOf(lost);
}

void SelectionReader::finish() {
    if (kind_ == Kind::Items) {
        // What has no second form may be left out beside others, but what a user would miss may not.
        const auto missed =
            std::ranges::find_if(lost_, [this](const auto& lost) { return !keepsWhatMatters(lost.first); });
        if (missed != lost_.end()) {
            fail(missed->second);
            return;
        }
    }
    outcome_ = std::move(findings_);
}

void SelectionReader::renewWindow() {
    xcb_destroy_window(connection_.xcb(), window_);
    window_ = connection_.createWindow();
}

SelectionClock::time_point SelectionReader::deadline() const {
    const auto answer = isAnotherForm_ ? std::min(limits_.answer, answerForAnotherForm) : limits_.answer;
    return conversion_ ? std::min(end_, conversion_->lastProgress() + answer) : end_;
}

void SelectionReader::expire(SelectionClock::time_point now) {
    if (outcome_ || now < deadline())
        return;
    // One slow target of an owner that answers is left out; an owner that never answered is not asked again and again.
    if (!heardFromOwner_ || kind_ == Kind::Text) {
        fail(PasteboardError::TimedOut);
        return;
    }
    if (now >= end_) {
        for (const auto& target : std::exchange(remaining_, {}))
            lost_.emplace_back(target, PasteboardError::TimedOut);
    }
    leaveOut(PasteboardError::TimedOut);
}

}  // namespace tavrelon::desktop
