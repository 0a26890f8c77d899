#include <QElapsedTimer>
#include <QTimer>

#include "desktop/pasteboard_session.h"
#include "desktop/tools.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;
using platform::PasteboardError;
using Break = ClipboardManners::Break;

const QString utf8String = QStringLiteral("UTF8_STRING");
const QString mixedText = QStringLiteral("Grüße 你好 👩‍👩‍👧 \n\tend");
constexpr qsizetype large = 8 << 20;

class PasteboardReading : public PasteboardSession {
 public:
    void makePasteboard(const desktop::SelectionReadLimits& limits) {
        pasteboard = desktop::X11Pasteboard::create(loop, log, {}, limits).value();
    }
};

TEST_F(PasteboardReading, RealToolsAreReadExactly) {
    copyByXclip(mixedText.toUtf8(), utf8String);
    EXPECT_EQ(string(), mixedText);
    copyByXclip(pattern(3000), QStringLiteral("image/png"));
    EXPECT_EQ(items(), Items{item({{QStringLiteral("image/png"), pattern(3000)}})});
    EXPECT_EQ(string(), std::nullopt);
    const auto picture = pattern(large);
    copyByXclip(picture, QStringLiteral("image/png"));
    EXPECT_TRUE(items() == Items{item({{QStringLiteral("image/png"), picture}})});
}

TEST_F(PasteboardReading, OldTextEncodingsAreUnderstood) {
    {
        const ClipboardOwner owner({data(QStringLiteral("STRING"), "caf\xe9")});
        EXPECT_EQ(string(), QStringLiteral("café"));
    }
    {
        const ClipboardOwner owner(
            {{.target = QStringLiteral("TEXT"), .type = QStringLiteral("STRING"), .bytes = "\xe9"}},
            {.listsTargets = false});
        EXPECT_EQ(string(), QStringLiteral("é"));
    }
    const ClipboardOwner owner({data(utf8String, mixedText.toUtf8())}, {.listsTargets = false});
    EXPECT_EQ(items(), Items{item({{utf8String, mixedText.toUtf8()}})}) << "an owner that lists no targets";
}

TEST_F(PasteboardReading, AnItemIsGivenBackInTheFormItHad) {
    const QByteArray color = bytesOf({0xffff0000, 0x0000ffff});
    {
        const ClipboardOwner owner({{.target = QStringLiteral("application/x-color"), .bytes = color, .format = 16},
                                    {.target = QStringLiteral("x-special/list"),
                                     .type = QStringLiteral("INTEGER"),
                                     .bytes = color,
                                     .format = 32},
                                    data(QStringLiteral("text/uri-list"), "file:///etc/hosts\r\n"),
                                    data(QStringLiteral("text/html"), {})});
        const auto snapshot = items();
        ASSERT_TRUE(snapshot && snapshot->size() == 1);
        EXPECT_EQ(snapshot->front().dataByType.size(), 4U);
        pasteboard->writeItems(*snapshot);
    }
    ClipboardRequestor requestor;
    const auto list = requestor.fetch(QStringLiteral("x-special/list"));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->type, QStringLiteral("INTEGER"));
    EXPECT_EQ(list->bytes, color);
    EXPECT_EQ(requestor.fetch(QStringLiteral("text/uri-list"))->bytes, QByteArray("file:///etc/hosts\r\n"));
    const auto empty = requestor.fetch(QStringLiteral("text/html"));
    EXPECT_TRUE(empty && empty->bytes.isEmpty());
}

TEST_F(PasteboardReading, ATargetThatFailsAloneIsLeftOut) {
    const ClipboardOwner owner(
        {data(QStringLiteral("image/png"), "p"), data(QStringLiteral("image/jpeg"), "j"), data(utf8String, "t")},
        {.refused = {QStringLiteral("image/png")}, .silent = {QStringLiteral("image/jpeg")}});
    EXPECT_EQ(items(), Items{item({{utf8String, "t"}})});
}

TEST_F(PasteboardReading, AnOwnerThatNeverAnswersCostsTheBoundOnceAndTheMainLoopLives) {
    const ClipboardOwner owner({data(utf8String, "x")}, {.answers = ClipboardManners::Answers::Never});
    int ticks = 0;
    QTimer ticking;
    QObject::connect(&ticking, &QTimer::timeout, &ticking, [&] { ++ticks; });
    ticking.start(10);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(items(), std::unexpected(PasteboardError::TimedOut));
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_GT(ticks, 5) << "the main loop stood still";
    const auto asked = owner.requestCount();
    EXPECT_EQ(string(), std::nullopt);
    EXPECT_EQ(owner.requestCount(), asked) << "the hung owner was asked again";
}

TEST_F(PasteboardReading, ABreakInTheMiddleOfIncrementsEndsTheReading) {
    for (const auto breaks : {Break::Dies, Break::Stalls}) {
        const ClipboardOwner owner({data(utf8String, pattern(1 << 20))},
                                   {.incrementBytes = 65536, .afterIncrements = breaks});
        QElapsedTimer clock;
        clock.start();
        EXPECT_EQ(items(),
                  std::unexpected(breaks == Break::Dies ? PasteboardError::Failed : PasteboardError::TimedOut));
        EXPECT_LT(clock.elapsed(), 4000);
    }
    const ClipboardOwner healthy({data(utf8String, "after it")}, {.incrementBytes = 3});
    EXPECT_EQ(string(), QStringLiteral("after it"));
}

TEST_F(PasteboardReading, MoreThanTheCapIsTooLargeHoweverItComes) {
    makePasteboard({.bytes = 100'000});
    const auto bytes = pattern(150'000);
    {
        const ClipboardOwner direct({data(QStringLiteral("image/png"), bytes)});
        EXPECT_EQ(items(), std::unexpected(PasteboardError::TooLarge));
    }
    {
        const ClipboardOwner announced({data(QStringLiteral("image/png"), bytes)},
                                       {.incrementBytes = 8192, .announcedBytes = 150'000});
        EXPECT_EQ(items(), std::unexpected(PasteboardError::TooLarge));
    }
    {
        const ClipboardOwner silent({data(QStringLiteral("image/png"), bytes)}, {.incrementBytes = 8192});
        EXPECT_EQ(items(), std::unexpected(PasteboardError::TooLarge));
    }
}

TEST_F(PasteboardReading, APictureIsKeptInOneFormWhenAllAreTooMuchAndATextIsNeverLostForIt) {
    makePasteboard({.bytes = 100'000});
    const auto png = data(QStringLiteral("image/png"), pattern(60'000));
    const auto bmp = data(QStringLiteral("image/bmp"), pattern(60'000));
    {
        const ClipboardOwner picture({png, bmp, data(QStringLiteral("application/x-owner"), "o")});
        EXPECT_EQ(items(), Items{item({{png.target, png.bytes}, {QStringLiteral("application/x-owner"), "o"}})});
    }
    {
        const ClipboardOwner page({bmp, png, data(QStringLiteral("text/html"), "<img>")});
        EXPECT_EQ(items(), Items{item({{bmp.target, bmp.bytes}, {QStringLiteral("text/html"), "<img>"}})});
    }
    const auto tooLarge = data(QStringLiteral("image/png"), pattern(150'000));
    const ClipboardOwner pictureLost({data(QStringLiteral("text/html"), "<img>"), tooLarge});
    EXPECT_EQ(items(), std::unexpected(PasteboardError::TooLarge)) << "what is on it would not be the picture any more";
    const ClipboardOwner cells({tooLarge, data(utf8String, "1\t2")});
    EXPECT_EQ(items(), Items{item({{utf8String, "1\t2"}})});
}

TEST_F(PasteboardReading, ACancelledReadingEndsAtOnceAndDisturbsNoLaterOne) {
    const ClipboardOwner owner({data(utf8String, mixedText.toUtf8())}, {.delay = 300ms});
    bool cancelled = false;
    {
        async::TaskScope scope(loop);
        auto handle = scope.spawn([](desktop::X11Pasteboard& board, bool& flag) -> async::Task<void> {
            try {
                co_await board.string();
            } catch (const async::CancellationError&) {
                flag = true;
            }
        }(*pasteboard, cancelled));
        ASSERT_TRUE(runQtUntil([&] { return owner.requestCount() > 0; }));
        handle.cancel();
        ASSERT_TRUE(runQtUntil([&] { return cancelled; }));
    }
    EXPECT_EQ(string(), mixedText);
}

TEST_F(PasteboardReading, ReadingsThatAreUnderWayFailWithThePasteboard) {
    const ClipboardOwner owner({data(utf8String, "x")}, {.answers = ClipboardManners::Answers::Never});
    std::optional<std::expected<Items, PasteboardError>> outcome;
    async::TaskScope scope(loop);
    scope.spawn([](desktop::X11Pasteboard& board, auto& slot) -> async::Task<void> { slot = co_await board.items(); }(
                                                                  *pasteboard, outcome));
    ASSERT_TRUE(runQtUntil([&] { return owner.requestCount() > 0; }));
    pasteboard.reset();
    ASSERT_TRUE(runQtUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(*outcome, std::unexpected(PasteboardError::Failed));
}

TEST_F(PasteboardReading, AServerThatIsHeldCostsTheBoundOfEachCall) {
    ClipboardPeer holder;
    holder.holdServer();
    QElapsedTimer clock;
    clock.start();
    const auto before = pasteboard->changeCount();
    pasteboard->setString(mixedText);
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_FALSE(log.lines().isEmpty());
    holder.disconnect();
    EXPECT_TRUE(runQtUntil([&] { return pasteboard->changeCount() > before; })) << "it was taken late, not never";
    EXPECT_EQ(string(), mixedText);

    ClipboardPeer another;
    another.holdServer();
    clock.restart();
    pasteboard.reset();
    EXPECT_LT(clock.elapsed(), 6000);
}

}  // namespace

}  // namespace tavrelon::testing
