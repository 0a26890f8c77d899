#include "contract/pasteboard_contract.h"

namespace tavrelon::testing {

using platform::PasteboardError;
using platform::PasteboardItem;

namespace {

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
    EXPECT_EQ(world->items(), PasteboardWorld::Items{});
    EXPECT_EQ(world->string(), std::nullopt);
}

TEST_P(PasteboardContract, ATextComesBackExactlyAndCountsAsAChange) {
    const auto before = pasteboard.changeCount();
    pasteboard.setString(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(world->string(), mixedText);
    const auto items = world->items();
    ASSERT_TRUE(items && items->size() == 1);
    EXPECT_FALSE(items->front().dataByType.empty());

    pasteboard.setString(QString());
    EXPECT_EQ(world->string(), QString());
}

TEST_P(PasteboardContract, ReadingIsNoChange) {
    world->copyElsewhere(mixedText);
    const auto before = pasteboard.changeCount();
    EXPECT_EQ(world->string(), mixedText);
    EXPECT_TRUE(world->items());
    EXPECT_EQ(pasteboard.changeCount(), before);
}

TEST_P(PasteboardContract, AClearedPasteboardIsEmptyWhoeverHadIt) {
    pasteboard.setString(mixedText);
    auto before = pasteboard.changeCount();
    pasteboard.clearContents();
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(world->items(), PasteboardWorld::Items{});

    world->copyElsewhere(mixedText);
    before = pasteboard.changeCount();
    pasteboard.clearContents();
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(world->string(), std::nullopt);

    pasteboard.setString(mixedText);
    pasteboard.writeItems({});
    EXPECT_EQ(world->items(), PasteboardWorld::Items{});
}

TEST_P(PasteboardContract, AWriteRightAfterAClearingHolds) {
    const auto before = pasteboard.changeCount();
    pasteboard.clearContents();
    pasteboard.setString(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(world->string(), mixedText);
    EXPECT_EQ(world->string(), mixedText) << "the clearing came after the text";
}

TEST_P(PasteboardContract, AllTypesOfAnItemAreKept) {
    pasteboard.writeItems({richItem(), pictureItem()});
    EXPECT_EQ(world->items(), PasteboardWorld::Items{richItem()}) << "one item only";
    EXPECT_EQ(world->string(), QStringLiteral("café"));

    pasteboard.writeItems({pictureItem()});
    EXPECT_EQ(world->items(), PasteboardWorld::Items{pictureItem()});
    EXPECT_EQ(world->string(), std::nullopt);
}

TEST_P(PasteboardContract, ACopyElsewhereIsSeenAtOnceAndReplacesOurs) {
    pasteboard.setString(QStringLiteral("ours"));
    const auto before = pasteboard.changeCount();
    world->copyElsewhere(mixedText);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(world->string(), mixedText);

    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Answers);
    EXPECT_EQ(world->items(), PasteboardWorld::Items{richItem()});
    world->copyElsewhere(pictureItem(), PasteboardWorld::Owner::Answers);
    EXPECT_EQ(world->string(), std::nullopt);
}

TEST_P(PasteboardContract, WhatWasReadCanBeGivenBack) {
    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Answers);
    const auto snapshot = world->items();
    ASSERT_TRUE(snapshot);
    world->copyElsewhere(QStringLiteral("a copied selection"));
    pasteboard.clearContents();
    pasteboard.writeItems(*snapshot);
    EXPECT_EQ(world->items(), PasteboardWorld::Items{richItem()});
}

TEST_P(PasteboardContract, AHungOwnerCostsTheBoundAndNothingElse) {
    world->copyElsewhere(richItem(), PasteboardWorld::Owner::Hangs);
    EXPECT_EQ(world->items(), std::unexpected(PasteboardError::TimedOut));
    EXPECT_EQ(world->string(), std::nullopt);
    pasteboard.setString(mixedText);
    EXPECT_EQ(world->string(), mixedText);
    world->copyElsewhere(QStringLiteral("healthy"));
    EXPECT_EQ(world->string(), QStringLiteral("healthy"));
}

}  // namespace

}  // namespace tavrelon::testing
