// What every pasteboard does, the fake and the one of the X server.
#include <gtest/gtest.h>

#include <memory>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_pasteboard.h"
#include "support/clipboard_owner.h"
#include "support/fake_pasteboard.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

namespace {

using platform::PasteboardError;
using platform::PasteboardItem;

/// A pasteboard with somebody else beside it: what the suite needs of the fake and of the real one alike.
class PasteboardWorld {
 public:
    enum class Owner { Answers, Hangs };
    using Items = std::vector<PasteboardItem>;

    virtual ~PasteboardWorld() = default;

    /// Starts empty.
    virtual platform::Pasteboard& pasteboard() = 0;

    /// What another application does; it is done when these return.
    virtual void copyElsewhere(const QString& text) = 0;
    virtual void copyElsewhere(const PasteboardItem& item, Owner owner) = 0;
};

class FakePasteboardWorld : public PasteboardWorld {
 public:
    platform::Pasteboard& pasteboard() override { return pasteboard_; }
    void copyElsewhere(const QString& text) override {
        pasteboard_.setOwner(FakePasteboard::Owner::Answers);
        pasteboard_.copyElsewhere(text);
    }
    void copyElsewhere(const PasteboardItem& item, Owner owner) override {
        pasteboard_.setOwner(owner == Owner::Hangs ? FakePasteboard::Owner::Hangs : FakePasteboard::Owner::Answers);
        pasteboard_.copyElsewhere({item});
    }

 private:
    desktop::QtMainLoop loop_;
    FakePasteboard pasteboard_{loop_};
};

class X11PasteboardWorld : public PasteboardWorld {
 public:
    platform::Pasteboard& pasteboard() override { return *pasteboard_; }
    void copyElsewhere(const QString& text) override {
        replaceOwner({{.target = QStringLiteral("UTF8_STRING"), .bytes = text.toUtf8()}}, {});
    }
    void copyElsewhere(const PasteboardItem& item, Owner owner) override {
        std::vector<ClipboardData> data;
        for (const auto& [type, bytes] : item.dataByType)
            data.push_back({.target = type, .bytes = bytes});
        ClipboardManners manners;
        if (owner == Owner::Hangs)
            manners.answers = ClipboardManners::Answers::Never;
        replaceOwner(std::move(data), std::move(manners));
    }

 private:
    void replaceOwner(std::vector<ClipboardData> data, ClipboardManners manners) {
        // The new one takes the clipboard before the old one goes, as between two applications.
        owner_ = std::make_unique<ClipboardOwner>(std::move(data), std::move(manners));
    }

    desktop::QtMainLoop loop_;
    RecordingLog log_;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard_ = desktop::X11Pasteboard::create(loop_, log_).value();
    std::unique_ptr<ClipboardOwner> owner_;
};

class PasteboardContract : public ::testing::TestWithParam<bool> {
 public:
    std::unique_ptr<PasteboardWorld> world =
        GetParam() ? std::unique_ptr<PasteboardWorld>(std::make_unique<X11PasteboardWorld>())
                   : std::make_unique<FakePasteboardWorld>();
    platform::Pasteboard& pasteboard = world->pasteboard();
    desktop::QtMainLoop loop;

    auto items() { return runTaskOnQt(loop, pasteboard.items()); }
    auto string() { return runTaskOnQt(loop, pasteboard.string()); }
};

const QString mixedText = QStringLiteral("Grüße, 你好 👩‍👩‍👧 \n\tend");

PasteboardItem richItem() {
    return {.dataByType = {{QStringLiteral("text/html"), "<b>caf\xc3\xa9</b>"},
                           {QStringLiteral("image/png"), QByteArray("\x89PNG\r\n\0\x1a", 8)},
                           {QStringLiteral("UTF8_STRING"), "caf\xc3\xa9"}}};
}

PasteboardItem pictureItem() {
    return {.dataByType = {{QStringLiteral("image/png"), QByteArray(5000, '\x01')}}};
}

TEST_P(PasteboardContract, StartsEmpty) {
    EXPECT_EQ(items(), PasteboardWorld::Items{});
    EXPECT_EQ(string(), std::nullopt);
}

TEST_P(PasteboardContract, ATextComesBackExactlyAndCountsAsAChange) {
    const auto before = pasteboard.changeCount();
    pasteboard.setString(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(string(), mixedText);
    const auto held = items();
    ASSERT_TRUE(held && held->size() == 1);
    EXPECT_FALSE(held->front().dataByType.empty());

    pasteboard.setString(QString());
    EXPECT_EQ(string(), QString());
}

TEST_P(PasteboardContract, ReadingIsNoChange) {
    world->copyElsewhere(mixedText);
    const auto before = pasteboard.changeCount();
    EXPECT_EQ(string(), mixedText);
    EXPECT_TRUE(items());
    EXPECT_EQ(pasteboard.changeCount(), before);
}

TEST_P(PasteboardContract, AClearedPasteboardIsEmptyWhoeverHadIt) {
    pasteboard.setString(mixedText);
    auto before = pasteboard.changeCount();
    pasteboard.clearContents();
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(items(), PasteboardWorld::Items{});

    world->copyElsewhere(mixedText);
    before = pasteboard.changeCount();
    pasteboard.clearContents();
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(string(), std::nullopt);

    pasteboard.setString(mixedText);
    pasteboard.writeItems({});
    EXPECT_EQ(items(), PasteboardWorld::Items{});
}

TEST_P(PasteboardContract, AWriteRightAfterAClearingHolds) {
    const auto before = pasteboard.changeCount();
    pasteboard.clearContents();
    pasteboard.setString(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(string(), mixedText);
    EXPECT_EQ(string(), mixedText) << "the clearing came after the text";
}

TEST_P(PasteboardContract, AllTypesOfAnItemAreKept) {
    pasteboard.writeItems({richItem(), pictureItem()});
    EXPECT_EQ(items(), PasteboardWorld::Items{richItem()}) << "one item only";
    EXPECT_EQ(string(), QStringLiteral("café"));

    pasteboard.writeItems({pictureItem()});
    EXPECT_EQ(items(), PasteboardWorld::Items{pictureItem()});
    EXPECT_EQ(string(), std::nullopt);
}

TEST_P(PasteboardContract, ACopyElsewhereIsSeenAtOnceAndReplacesOurs) {
    pasteboard.setString(QStringLiteral("ours"));
    const auto before = pasteboard.changeCount();
    world->copyElsewhere(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(string(), mixedText);

    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Answers);
    EXPECT_EQ(items(), PasteboardWorld::Items{richItem()});
    world->copyElsewhere(pictureItem(), PasteboardWorld::Owner::Answers);
    EXPECT_EQ(string(), std::nullopt);
}

TEST_P(PasteboardContract, WhatWasReadCanBeGivenBack) {
    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Answers);
    const auto snapshot = items();
    ASSERT_TRUE(snapshot);
    world->copyElsewhere(QStringLiteral("a copied selection"));
    pasteboard.clearContents();
    pasteboard.writeItems(*snapshot);
    EXPECT_EQ(items(), PasteboardWorld::Items{richItem()});
}

TEST_P(PasteboardContract, AHungOwnerCostsTheBoundAndNothingElse) {
    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Hangs);
    EXPECT_EQ(items(), std::unexpected(PasteboardError::TimedOut));
    EXPECT_EQ(string(), std::nullopt);
    pasteboard.setString(mixedText);
    EXPECT_EQ(string(), mixedText);
    world->copyElsewhere(QStringLiteral("healthy"));
    EXPECT_EQ(string(), QStringLiteral("healthy"));
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, PasteboardContract, ::testing::Bool());

}  // namespace

}  // namespace tavrelon::testing
