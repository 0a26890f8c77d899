#include <QFile>
#include <QProcess>
#include <array>
#include <thread>

#include "desktop/pasteboard_session.h"
#include "support/clipboard_manager.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;
using HandOver = desktop::SelectionThread::HandOver;

const QString mixedText = QStringLiteral("Grüße 你好 👩‍👩‍👧 \n\tend");
constexpr qsizetype large = 8 << 20;

class PasteboardServing : public PasteboardSession {};

TEST_F(PasteboardServing, ATextIsExactInEveryTextTarget) {
    pasteboard->setString(mixedText);
    for (const auto& target : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "TEXT"})
        EXPECT_EQ(readByXclip(QString::fromLatin1(target)), mixedText.toUtf8()) << target;
    EXPECT_EQ(run(QStringLiteral("xsel"), {QStringLiteral("-ob")}).output, mixedText.toUtf8());
    EXPECT_EQ(readByXclip(QStringLiteral("STRING")), std::nullopt) << "a text with question marks would be a wrong one";

    pasteboard->setString(QStringLiteral("café"));
    EXPECT_EQ(readByXclip(QStringLiteral("STRING")), QByteArray("caf\xe9"));
}

TEST_F(PasteboardServing, EveryChangeCountsAndAClearedClipboardIsEmptyWhoeverHadIt) {
    EXPECT_EQ(items(), Items{});
    auto count = pasteboard->changeCount();
    const auto changed = [&] { return pasteboard->changeCount() > std::exchange(count, pasteboard->changeCount()); };
    pasteboard->setString(mixedText);
    EXPECT_TRUE(changed());
    EXPECT_EQ(string(), mixedText);
    EXPECT_FALSE(changed()) << "reading is no change";
    pasteboard->clearContents();
    EXPECT_TRUE(changed());
    EXPECT_EQ(items(), Items{});
    const ClipboardOwner owner({data(QStringLiteral("UTF8_STRING"), "theirs")});
    EXPECT_TRUE(changed());
    EXPECT_EQ(string(), QStringLiteral("theirs"));
    pasteboard->clearContents();
    EXPECT_EQ(string(), std::nullopt);
    pasteboard->clearContents();
    pasteboard->setString(mixedText);
    EXPECT_EQ(string(), mixedText);
    EXPECT_EQ(string(), mixedText) << "the clearing came after the text";
    pasteboard->setString(QString());
    EXPECT_EQ(string(), QString());
    const auto first = item({{QStringLiteral("image/png"), pattern(5000)}});
    pasteboard->writeItems({first, item({{QStringLiteral("UTF8_STRING"), "second"}})});
    EXPECT_EQ(items(), Items{first}) << "one item only";
    pasteboard->writeItems({});
    EXPECT_EQ(items(), Items{});
}

TEST_F(PasteboardServing, EveryTypeOfAnItemIsServedAndListed) {
    pasteboard->writeItems({item({{QStringLiteral("text/html"), "<i>x</i>"},
                                  {QStringLiteral("image/png"), pattern(3000)},
                                  {QStringLiteral("text/plain;charset=utf-8"), "x"}})});
    ClipboardRequestor requestor;
    const auto targets = requestor.targets();
    for (const auto* target : {"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "text/html", "image/png",
                               "text/plain;charset=utf-8", "UTF8_STRING", "STRING", "TEXT"})
        EXPECT_EQ(targets.count(QString::fromLatin1(target)), 1) << target;
    EXPECT_EQ(readByXclip(QStringLiteral("image/png")), pattern(3000));
    EXPECT_EQ(readByXclip(QStringLiteral("text/html")), QByteArray("<i>x</i>"));
    EXPECT_EQ(readByXclip(QStringLiteral("image/jpeg")), std::nullopt);
}

TEST_F(PasteboardServing, SeveralTargetsAndTheTimeOfOwningCanBeAskedFor) {
    pasteboard->setString(mixedText);
    ClipboardRequestor requestor;
    const auto several = requestor.fetchMultiple(
        {QStringLiteral("UTF8_STRING"), QStringLiteral("image/png"), QStringLiteral("text/plain")});
    ASSERT_EQ(several.size(), 3U);
    ASSERT_TRUE(several[0] && several[2]);
    EXPECT_EQ(several[0]->bytes, mixedText.toUtf8());
    EXPECT_EQ(several[1], std::nullopt);
    EXPECT_EQ(several[2]->bytes, mixedText.toUtf8());
    const auto time = requestor.fetch(QStringLiteral("TIMESTAMP"));
    ASSERT_TRUE(time && time->type == QStringLiteral("INTEGER"));
    EXPECT_NE(numbersOf(time->bytes), std::vector<std::uint32_t>{XCB_CURRENT_TIME});
}

TEST_F(PasteboardServing, ManyRequestorsAreServedSideBySide) {
    const auto bytes = pattern(3 << 20);
    pasteboard->writeItems({item({{QStringLiteral("image/png"), bytes}})});
    std::array<ClipboardRequestor, 6> requestors;
    std::array<QByteArray, 6> received;
    for (auto& requestor : requestors)
        requestor.request(QStringLiteral("image/png"));
    for (auto& requestor : requestors)
        EXPECT_TRUE(requestor.answer());
    // One increment for each in turn, so that all transfers are open at the same time; the content changes meanwhile.
    for (bool more = true; more;) {
        more = false;
        for (std::size_t i = 0; i < requestors.size(); ++i) {
            if (received[i].size() == bytes.size())
                continue;
            const auto increment = requestors[i].nextIncrement();
            ASSERT_TRUE(increment && !increment->isEmpty());
            received[i] += *increment;
            more = true;
        }
        pasteboard->setString(mixedText);
    }
    for (std::size_t i = 0; i < requestors.size(); ++i) {
        EXPECT_TRUE(received[i] == bytes);
        EXPECT_EQ(requestors[i].nextIncrement(), QByteArray());
    }
}

TEST_F(PasteboardServing, ARequestorThatVanishesOrStallsHoldsUpNobody) {
    const auto bytes = pattern(large);
    pasteboard->writeItems({item({{QStringLiteral("image/png"), bytes}})});
    ClipboardRequestor stalled;
    ClipboardRequestor vanishing;
    for (auto* requestor : {&stalled, &vanishing}) {
        requestor->request(QStringLiteral("image/png"));
        ASSERT_TRUE(requestor->answer());
    }
    ASSERT_TRUE(vanishing.nextIncrement());
    vanishing.disconnect();
    EXPECT_TRUE(readByXclip(QStringLiteral("image/png")) == bytes);

    // Later than its bound nothing is kept for the one that stalled: what it asks for then does not come.
    std::this_thread::sleep_for(desktop::SelectionServer::stallLimit + 500ms);
    ASSERT_TRUE(stalled.nextIncrement());  // was written before the stall
    EXPECT_EQ(stalled.nextIncrement(300ms), std::nullopt);
    EXPECT_TRUE(readByXclip(QStringLiteral("image/png")) == bytes);
}

TEST_F(PasteboardServing, OthersAreServedWhileTheMainThreadSleeps) {
    pasteboard->setString(mixedText);
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
                {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")});
    ASSERT_TRUE(xclip.waitForStarted());
    std::this_thread::sleep_for(1s);
    // It must have ended by itself: nothing of ours has run since.
    QFile stat(QStringLiteral("/proc/%1/stat").arg(xclip.processId()));
    ASSERT_TRUE(stat.open(QIODevice::ReadOnly));
    EXPECT_TRUE(stat.readAll().contains(") Z ")) << "still waiting for the clipboard";
    ASSERT_TRUE(xclip.waitForFinished());
    EXPECT_EQ(xclip.readAllStandardOutput(), mixedText.toUtf8());
}

TEST_F(PasteboardServing, TheClipboardManagerGetsEverythingAtTheEnd) {
    const auto picture = pattern(3 << 20);
    ClipboardManager manager;
    pasteboard->writeItems(
        {item({{QStringLiteral("UTF8_STRING"), mixedText.toUtf8()}, {QStringLiteral("image/png"), picture}})});
    pasteboard.reset();
    const auto saved = manager.stop();
    ASSERT_TRUE(saved.contains(QStringLiteral("image/png")) && saved.contains(QStringLiteral("UTF8_STRING")));
    EXPECT_TRUE(saved.at(QStringLiteral("image/png")) == picture);
    EXPECT_EQ(saved.at(QStringLiteral("UTF8_STRING")), mixedText.toUtf8());
}

TEST_F(PasteboardServing, AManagerThatIsMissingOrHangsDoesNotHoldUpTheEnd) {
    pasteboard->setString(mixedText);
    EXPECT_EQ(pasteboard->handOver(), HandOver::NoManager);
    const ClipboardManager manager(ClipboardManager::Manners::NeverAnswers);
    EXPECT_EQ(pasteboard->handOver(200ms), HandOver::Failed);
    const auto start = std::chrono::steady_clock::now();
    pasteboard.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
}

}  // namespace

}  // namespace tavrelon::testing
