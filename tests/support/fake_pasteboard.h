#pragma once

#include <QStringList>
#include <chrono>

#include "async/main_loop.h"
#include "platform/pasteboard.h"

namespace tavrelon::testing {

/// A pasteboard in memory. Until a test says otherwise it is empty and every owner answers at once.
///
/// What the code under test put there itself is read at once; only what another application put there can hang, as on a
/// real desktop. Main thread.
class FakePasteboard : public platform::Pasteboard {
 public:
    enum class Owner { Answers, Hangs };

    explicit FakePasteboard(async::MainLoop& loop) : loop_(loop) {}

    std::int64_t changeCount() override { return changeCount_; }
    async::Task<std::expected<std::vector<platform::PasteboardItem>, platform::PasteboardError>> items() override;
    async::Task<std::optional<QString>> string() override;
    bool wasFetched() override { return fetched; }
    void clearContents() override;
    bool setString(const QString& text) override;
    bool writeItems(std::vector<platform::PasteboardItem> items) override;

    /// What another application does.
    void copyElsewhere(const QString& text);
    void copyElsewhere(std::vector<platform::PasteboardItem> items);

    /// How the other application behaves when it is read. If it never answers a read ends after `bound`.
    void setOwner(Owner owner) { owner_ = owner; }
    static constexpr std::chrono::seconds bound{1};

    /// Whether another application holds on to it, so that nothing can be put there.
    bool refusesOurs = false;

    /// Whether what is on it was pasted.
    bool fetched = false;

    /// A look that neither waits nor is journalled.
    const std::vector<platform::PasteboardItem>& contents() const { return contents_; }
    std::optional<QString> text() const { return textOf(contents_); }

    /// The calls of the port in their order: "items", "string", "clearContents", "setString", "writeItems".
    const QStringList& journal() const { return journal_; }
    void clearJournal() { journal_.clear(); }

    /// The one-item list that `setString` makes of a text.
    static std::vector<platform::PasteboardItem> itemsOf(const QString& text);

 private:
    enum class Source { Ours, Elsewhere };
    using Read = std::expected<std::vector<platform::PasteboardItem>, platform::PasteboardError>;

    async::Task<Read> read();
    void replace(std::vector<platform::PasteboardItem> items, Source source);
    static std::optional<QString> textOf(const std::vector<platform::PasteboardItem>& items);

    async::MainLoop& loop_;
    std::vector<platform::PasteboardItem> contents_;
    Source source_ = Source::Ours;
    std::int64_t changeCount_ = 1;
    Owner owner_ = Owner::Answers;
    QStringList journal_;
};

}  // namespace tavrelon::testing
