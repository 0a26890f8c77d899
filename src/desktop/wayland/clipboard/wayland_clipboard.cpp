#include "desktop/wayland/clipboard/wayland_clipboard.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "desktop/wayland/clipboard/clipboard_types.h"

namespace tavrelon::desktop {

using platform::PasteboardError;
using platform::PasteboardItem;

namespace {

/// How long a client that fetches may take nothing.
constexpr std::chrono::seconds servingPatience{5};

WaylandClipboard& self(void* data) {
    return *static_cast<WaylandClipboard*>(data);
}

}  // namespace

const data_control::DeviceListener WaylandClipboard::deviceListener{
    [](void* data, data_control::Device*, data_control::Offer* offer) { self(data).announced(offer); },
    [](void* data, data_control::Device*, data_control::Offer* offer) { self(data).selected(offer); },
    [](void*, data_control::Device*) {},
    [](void* data, data_control::Device*, data_control::Offer* offer) { self(data).dropOffer(offer); }};

const data_control::SourceListener WaylandClipboard::sourceListener{
    [](void* data, data_control::Source* source, const char* type, int descriptor) {
        if (source == self(data).source_)
            self(data).send(QString::fromUtf8(type), descriptor);
        else
            ::close(descriptor);
    },
    [](void* data, data_control::Source* source) {
        // One that we replaced ourselves is gone already.
        if (source == self(data).source_)
            self(data).withdraw();
    }};

const data_control::OfferListener WaylandClipboard::offerListener{
    [](void* data, data_control::Offer* offer, const char* type) {
        self(data).offers_[offer].append(QString::fromUtf8(type));
    }};

WaylandClipboard::WaylandClipboard(WaylandConnection& connection, std::shared_ptr<std::atomic<std::uint64_t>> presses,
                                   const ClipboardLimits& limits)
    : connection_(connection),
      presses_(std::move(presses)),
      limits_(limits),
      device_(
          data_control::deviceOf(connection.globals().dataControl, connection.globals().seat, deviceListener, this)) {}

WaylandClipboard::~WaylandClipboard() {
    connection_.forget(nextReading_);
    reader_.reset();
    while (!servings_.empty())
        endServing(servings_.begin()->first);
    withdraw();
    while (!offers_.empty())
        dropOffer(offers_.begin()->first);
    data_control::destroy(device_);
}

void WaylandClipboard::announced(data_control::Offer* offer) {
    offers_[offer];
    data_control::listenTo(offer, offerListener, this);
}

void WaylandClipboard::selected(data_control::Offer* offer) {
    // The first is what was there before us.
    if (std::exchange(knowsState_, true))
        ++changes_;
    dropOffer(std::exchange(current_, offer));
}

void WaylandClipboard::dropOffer(data_control::Offer* offer) {
    if (offer && offers_.erase(offer) > 0)
        data_control::destroy(offer);
}

void WaylandClipboard::withdraw() {
    if (source_)
        data_control::destroy(std::exchange(source_, nullptr));
    offered_ = {};
}

void WaylandClipboard::offer(PasteboardItem item) {
    withdraw();
    offered_ = withTextTypes(std::move(item));
    wasFetched_ = false;
    pressesAtOffer_ = *presses_;
    source_ = data_control::createSource(connection_.globals().dataControl, sourceListener, this);
    for (const auto& [type, bytes] : offered_.dataByType)
        data_control::addType(source_, type.toUtf8().constData());
    data_control::setSelection(device_, source_);
}

void WaylandClipboard::clear() {
    withdraw();
    data_control::setSelection(device_, nullptr);
}

void WaylandClipboard::send(const QString& type, int descriptor) {
    const auto form = std::ranges::find(offered_.dataByType, type, [](const auto& each) { return each.first; });
    // Whoever fetches may have opened it either way.
    if (form == offered_.dataByType.end() || ::fcntl(descriptor, F_SETFL, O_NONBLOCK) != 0) {
        ::close(descriptor);
        return;
    }
    wasFetched_ |= *presses_ > pressesAtOffer_;
    servings_[descriptor] = {form->second, 0, 0};
    write(descriptor);
}

void WaylandClipboard::write(int descriptor) {
    auto& serving = servings_[descriptor];
    while (serving.written < serving.bytes.size()) {
        const auto count = ::write(descriptor, serving.bytes.constData() + serving.written,
                                   static_cast<std::size_t>(serving.bytes.size() - serving.written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN) {
            connection_.forget(serving.timer);
            serving.timer = connection_.at(WaylandConnection::Clock::now() + servingPatience,
                                           [this, descriptor] { endServing(descriptor); });
            connection_.watch(descriptor, POLLOUT, [this, descriptor] { write(descriptor); });
            return;
        }
        if (count <= 0)
            break;
        serving.written += count;
    }
    endServing(descriptor);
}

void WaylandClipboard::endServing(int descriptor) {
    connection_.unwatch(descriptor);
    connection_.forget(servings_[descriptor].timer);
    servings_.erase(descriptor);
    ::close(descriptor);
}

void WaylandClipboard::read(std::uint64_t id, Kind kind, ReadDone done) {
    readings_.push_back({id, kind, std::move(done)});
    if (readings_.size() == 1 && !reader_)
        readNext();
}

void WaylandClipboard::abandon(std::uint64_t id) {
    const bool isUnderWay = !readings_.empty() && readings_.front().id == id;
    std::erase_if(readings_, [id](const Reading& reading) { return reading.id == id; });
    if (!isUnderWay)
        return;
    reader_.reset();
    readNext();
}

void WaylandClipboard::readNext() {
    if (readings_.empty())
        return;
    // What is ours needs no pipe, and nobody to wait for.
    if (source_ || !current_) {
        finishReading(offered_);
        return;
    }
    auto types = offers_[current_];
    if (readings_.front().kind == Kind::Text) {
        const auto type = textTypeAmong(types);
        types = type ? QStringList{*type} : QStringList();
    }
    reader_ = std::make_unique<ClipboardReading>(
        connection_, types, limits_,
        [this, offer = current_](const QString& type, int descriptor) {
            // An offer that was replaced meanwhile gives nothing: the pipe ends at once.
            if (offer == current_)
                data_control::receive(offer, type.toUtf8().constData(), descriptor);
        },
        [this](ClipboardReading::Outcome outcome) { finishReading(std::move(outcome)); });
    reader_->start();
}

void WaylandClipboard::finishReading(ClipboardReading::Outcome outcome) {
    auto reading = std::move(readings_.front());
    readings_.pop_front();
    reading.done(std::move(outcome));
    // The reader may have called this, so it ends in a turn of its own.
    connection_.forget(nextReading_);
    nextReading_ = connection_.at(WaylandConnection::Clock::now(), [this] {
        reader_.reset();
        readNext();
    });
}

}  // namespace tavrelon::desktop
