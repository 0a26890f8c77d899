#include "support/fake_pasteboard.h"

#include <array>

#include "async/waits.h"

namespace tavrelon::testing {

using platform::PasteboardError;
using platform::PasteboardItem;

async::Task<FakePasteboard::Read> FakePasteboard::read() {
    if (source_ == Source::Ours || owner_ == Owner::Answers)
        co_return contents_;
    co_await async::pause(loop_, bound);
    co_return std::unexpected(PasteboardError::TimedOut);
}

async::Task<std::expected<std::vector<PasteboardItem>, PasteboardError>> FakePasteboard::items() {
    journal_.push_back(QStringLiteral("items"));
    co_return co_await read();
}

async::Task<std::optional<QString>> FakePasteboard::string() {
    journal_.push_back(QStringLiteral("string"));
    const auto found = co_await read();
    co_return found ? textOf(*found) : std::nullopt;
}

void FakePasteboard::clearContents() {
    journal_.push_back(QStringLiteral("clearContents"));
    replace({}, Source::Ours);
}

bool FakePasteboard::setString(const QString& text) {
    journal_.push_back(QStringLiteral("setString"));
    if (!refusesOurs)
        replace(itemsOf(text), Source::Ours);
    return !refusesOurs;
}

bool FakePasteboard::writeItems(std::vector<PasteboardItem> items) {
    journal_.push_back(QStringLiteral("writeItems"));
    if (items.size() > 1)  // as on a desktop that knows one item
        items.erase(items.begin() + 1, items.end());
    if (!refusesOurs)
        replace(std::move(items), Source::Ours);
    return !refusesOurs;
}

void FakePasteboard::copyElsewhere(const QString& text) {
    replace(itemsOf(text), Source::Elsewhere);
}

void FakePasteboard::copyElsewhere(std::vector<PasteboardItem> items) {
    replace(std::move(items), Source::Elsewhere);
}

void FakePasteboard::replace(std::vector<PasteboardItem> items, Source source) {
    contents_ = std::move(items);
    source_ = source;
    ++changeCount_;
}

std::vector<PasteboardItem> FakePasteboard::itemsOf(const QString& text) {
    return {{.dataByType = {{QStringLiteral("UTF8_STRING"), text.toUtf8()}}}};
}

std::optional<QString> FakePasteboard::textOf(const std::vector<PasteboardItem>& items) {
    static const std::array textTypes{QStringLiteral("UTF8_STRING"), QStringLiteral("text/plain;charset=utf-8"),
                                      QStringLiteral("text/plain")};
    if (items.empty())
        return std::nullopt;
    for (const auto& wanted : textTypes) {
        for (const auto& [type, data] : items.front().dataByType) {
            if (type == wanted)
                return QString::fromUtf8(data);
        }
    }
    return std::nullopt;
}

}  // namespace tavrelon::testing
