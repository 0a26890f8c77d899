// What a user of the pasteboard counts on, whoever has the clipboard.
#include "desktop/pasteboard_session.h"

namespace tavrelon::testing {

namespace {

const QString mixedText = QStringLiteral("Grüße, 你好 👩‍👩‍👧 \n\tend");

class PasteboardChanges : public PasteboardSession {
 public:
    const platform::PasteboardItem rich = item({{QStringLiteral("text/html"), "<b>caf\xc3\xa9</b>"},
                                                {QStringLiteral("image/png"), QByteArray("\x89PNG\r\n\0\x1a", 8)},
                                                {QStringLiteral("UTF8_STRING"), "caf\xc3\xa9"}});
    const platform::PasteboardItem picture = item({{QStringLiteral("image/png"), QByteArray(5000, '\x01')}});

    /// Another application copies; it is done when this returns.
    void copyElsewhere(const platform::PasteboardItem& copied) {
        std::vector<ClipboardData> types;
        for (const auto& [type, bytes] : copied.dataByType)
            types.push_back(data(type, bytes));
        // The new one takes the clipboard before the old one goes, as between two applications.
        owner_ = std::make_unique<ClipboardOwner>(std::move(types));
    }
    void copyElsewhere(const QString& text) { copyElsewhere(item({{QStringLiteral("UTF8_STRING"), text.toUtf8()}})); }

 private:
    std::unique_ptr<ClipboardOwner> owner_;
};

TEST_F(PasteboardChanges, ATextComesBackExactlyAndCountsAsAChange) {
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(string(), std::nullopt);
    const auto before = pasteboard->changeCount();
    pasteboard->setString(mixedText);
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(string(), mixedText);
    const auto held = items();
    ASSERT_TRUE(held && held->size() == 1);
    EXPECT_FALSE(held->front().dataByType.empty());

    pasteboard->setString(QString());
    EXPECT_EQ(string(), QString());
}

TEST_F(PasteboardChanges, ReadingIsNoChange) {
    copyElsewhere(mixedText);
    const auto before = pasteboard->changeCount();
    EXPECT_EQ(string(), mixedText);
    EXPECT_TRUE(items());
    EXPECT_EQ(pasteboard->changeCount(), before);
}

TEST_F(PasteboardChanges, AClearedPasteboardIsEmptyWhoeverHadIt) {
    pasteboard->setString(mixedText);
    auto before = pasteboard->changeCount();
    pasteboard->clearContents();
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(items(), Items{});

    copyElsewhere(mixedText);
    before = pasteboard->changeCount();
    pasteboard->clearContents();
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(string(), std::nullopt);

    pasteboard->setString(mixedText);
    pasteboard->writeItems({});
    EXPECT_EQ(items(), Items{});
}

TEST_F(PasteboardChanges, AWriteRightAfterAClearingHolds) {
    const auto before = pasteboard->changeCount();
    pasteboard->clearContents();
    pasteboard->setString(mixedText);
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(string(), mixedText);
    EXPECT_EQ(string(), mixedText) << "the clearing came after the text";
}

TEST_F(PasteboardChanges, AllTypesOfAnItemAreKept) {
    pasteboard->writeItems({rich, picture});
    EXPECT_EQ(items(), Items{rich}) << "one item only";
    EXPECT_EQ(string(), QStringLiteral("café"));

    pasteboard->writeItems({picture});
    EXPECT_EQ(items(), Items{picture});
    EXPECT_EQ(string(), std::nullopt);
}

TEST_F(PasteboardChanges, ACopyElsewhereIsSeenAtOnceAndReplacesOurs) {
    pasteboard->setString(QStringLiteral("ours"));
    const auto before = pasteboard->changeCount();
    copyElsewhere(mixedText);
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_EQ(string(), mixedText);

    copyElsewhere(rich);
    EXPECT_EQ(items(), Items{rich});
    copyElsewhere(picture);
    EXPECT_EQ(string(), std::nullopt);
}

TEST_F(PasteboardChanges, WhatWasReadCanBeGivenBack) {
    copyElsewhere(rich);
    const auto snapshot = items();
    ASSERT_TRUE(snapshot);
    copyElsewhere(QStringLiteral("a copied selection"));
    pasteboard->clearContents();
    pasteboard->writeItems(*snapshot);
    EXPECT_EQ(items(), Items{rich});
}

}  // namespace

}  // namespace tavrelon::testing
