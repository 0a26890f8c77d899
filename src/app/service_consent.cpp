#include "app/service_consent.h"

#include <algorithm>
#include <utility>

#include "platform/web_origin.h"

namespace tavrelon::app {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using generation::RequestContents;

namespace {

constexpr auto answerLimit = 60s;

/// Nobody reads a question faster than this.
constexpr auto readingTime = 700ms;

/// Holds a line for each origin and what it may get.
constexpr auto entry = "tavrelon.allowedServices"_L1;
constexpr auto textTo = "text "_L1;
constexpr auto picturesTo = "pictures "_L1;

QString lineOf(const QUrl& address, RequestContents contents) {
    return (contents == RequestContents::Text ? textTo : picturesTo) + platform::webOrigin(address);
}

QStringList stored(const platform::DefaultsStore& store) {
    return store.string(entry).value_or(QString()).split(u'\n', Qt::SkipEmptyParts);
}

}  // namespace

QStringList ServiceConsent::missing(const std::vector<QUrl>& destinations, RequestContents contents) const {
    const auto allowed = stored(store_);
    QStringList lines;
    for (const auto& address : destinations)
        if (generation::isPublic(address) && !allowed.contains(lineOf(address, contents)) &&
            !allowed.contains(lineOf(address, RequestContents::Picture)))
            lines << lineOf(address, contents);
    lines.removeDuplicates();
    return lines;
}

bool ServiceConsent::isAllowed(const std::vector<QUrl>& destinations, RequestContents contents) const {
    return missing(destinations, contents).isEmpty();
}

std::vector<ServiceConsent::Allowed> ServiceConsent::allowed() const {
    std::vector<Allowed> services;
    for (const auto& line : stored(store_)) {
        const auto origin = line.section(u' ', 1);
        const auto contents = line.startsWith(picturesTo) ? RequestContents::Picture : RequestContents::Text;
        const auto known = std::ranges::find(services, origin, &Allowed::origin);
        if (known == services.end())
            services.push_back({origin, contents});
        else if (contents == RequestContents::Picture)
            known->contents = contents;
    }
    return services;
}

void ServiceConsent::forget(const QString& origin) {
    auto lines = stored(store_);
    lines.removeIf([&](const QString& line) { return line.section(u' ', 1) == origin; });
    store_.setString(entry, lines.join(u'\n'));
}

async::Task<void> ServiceConsent::obtain(std::vector<QUrl> destinations, RequestContents contents) {
    const auto lines = missing(destinations, contents);
    if (lines.isEmpty())
        co_return;
    Question question{{}, contents};
    for (const auto& line : lines)
        question.hosts << QUrl(line.section(u' ', 1)).host();
    try {
        co_await async::raceWithDeadline(mainLoop_, answerLimit, answer(std::move(question)));
    } catch (const async::DeadlineExceeded&) {
        throw async::CancellationError();
    }
    const auto allowed = stored(store_) + lines;
    store_.setString(entry, allowed.join(u'\n'));
}

async::Task<void> ServiceConsent::answer(Question question) {
    /// Takes the question away however the wait ends, unless a later one stands in its place.
    struct Ending {
        ServiceConsent& consent;
        quint64 number;
        Ending(ServiceConsent& owner, quint64 own) : consent(owner), number(own) {}
        Ending(const Ending&) = delete;
        Ending& operator=(const Ending&) = delete;
        ~Ending() {
            if (!consent.pending_ || consent.pending_->number != number)
                return;
            consent.pending_.reset();
            consent.show(std::nullopt);
        }
    };
    const auto number = ++lastNumber_;
    const Ending ending(*this, number);
    co_await async::fromCallback<bool>(mainLoop_, [&](auto resolver) {
        show(question);
        pending_ = Pending{number, mainLoop_.now(), [resolver]() mutable { resolver.resolve(true); }};
        return 0;  // nothing to abort
    });
}

void ServiceConsent::confirm() {
    if (pending_ && mainLoop_.now() - pending_->since >= readingTime)
        pending_->confirm();
}

}  // namespace tavrelon::app
