// Many random requests in one editor; every field must come out exactly right.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <random>

#include "desktop/main_job_session.h"
#include "desktop/tools.h"
#include "support/qt_gtest.h"
#include "text/characters.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

/// An input that opened within two seconds of the last answer would be reset with it.
constexpr auto untilIdle = 2100ms;

class Texts {
 public:
    Texts(unsigned seed, const RunningEditor& editor)
        : random_(seed), inTerminal_(editor.isTerminal()), onlyKeys_(editor.isKnownByKeysOnly()) {}

    /// Pieces that one Backspace removes whole, in every toolkit.
    QString typed() {
        static const QStringList pieces{QStringLiteral("what "),  QStringLiteral("Is"),   QStringLiteral("42?"),
                                        QStringLiteral("你好"),   QStringLiteral("😀"),   QStringLiteral("\n"),
                                        QStringLiteral("привет"), QStringLiteral("(a/b)")};
        // Where the field cannot be read, what is pasted counts as not typed.
        static const QStringList plain{QStringLiteral("what "), QStringLiteral("Is"), QStringLiteral("42?"),
                                       QStringLiteral("(a/b)")};
        QString text = someOf(onlyKeys_ ? plain : pieces, 1, 5);
        return text::isBlank(text) ? QStringLiteral("why") : text;
    }
    QString answer() {
        static const QStringList pieces{
            QStringLiteral("Sure. "),  QStringLiteral("世界，"),    QStringLiteral("👨‍👩‍👧"),
            QStringLiteral("\n"),      QStringLiteral("é"),         QStringLiteral("🇩🇪"),
            QStringLiteral("  two  "), QStringLiteral("tab\there"), QStringLiteral("ß\\n\"")};
        auto text = someOf(pieces, 1, 8) + QStringLiteral(".");
        return inTerminal_ ? text.replace(u'\t', u' ').replace(u'\n', u' ') : text;
    }
    QString around() {
        static const QStringList pieces{QStringLiteral("text "), QStringLiteral("more, "), QStringLiteral("中文"),
                                        QStringLiteral("🎉"), QStringLiteral("\n")};
        auto text = someOf(pieces, 0, 3);
        return inTerminal_ ? text.remove(u'\n') : text;
    }

 private:
    QString someOf(const QStringList& pieces, int least, int most) {
        QString text;
        for (auto left = std::uniform_int_distribution(least, most)(random_); left > 0; --left)
            text += pieces.at(std::uniform_int_distribution<qsizetype>(0, pieces.size() - 1)(random_));
        return text;
    }
    std::mt19937 random_;
    bool inTerminal_;
    bool onlyKeys_;
};

/// Tells where the table of applications is made how many of the requests came out right so far.
void keepCount(int done, int requests) {
    const auto folder = qEnvironmentVariable("TAVRELON_TABLE_FOLDER");
    if (folder.isEmpty())
        return;
    const auto name = QStringLiteral("/%1.requests-%2").arg(qEnvironmentVariable("TAVRELON_TEST_EDITOR"));
    writeWhole(folder + name.arg(requests), QByteArray::number(done) + '\n');
}

/// Another one asks for other texts.
unsigned seed() {
    bool given = false;
    const auto number = qEnvironmentVariable("TAVRELON_TEST_SEED").toUInt(&given);
    return given ? number : 20261124U;
}

}  // namespace

TEST(MainJobRepeat, EveryFieldIsExactlyRight) {
    const int rounds = qEnvironmentVariableIntValue("TAVRELON_TEST_REQUESTS");
    ASSERT_GT(rounds, 0);
    StandInService service;
    XTestKeyboard keyboard;
    RunningEditor editor(editorNamed(qgetenv("TAVRELON_TEST_EDITOR")), keyboard, QString());
    RunningTavrelon tavrelon(service);
    Texts texts(seed(), editor);
    keepCount(0, rounds);
    for (int round = 1; round <= rounds; ++round) {
        const auto before = QStringLiteral("<") + texts.around();
        const auto after = editor.isTerminal() ? QString() : texts.around() + QStringLiteral(">");
        const auto typed = texts.typed();
        StandInAnswer answer;
        answer.content = texts.answer();
        service.ledger().script({answer});

        editor.refill(before, after);
        const auto last = tavrelon.newestHistoryId();
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(tavrelon.waitForLog(QStringLiteral("[Hotkey] Starting text listening"), round))
            << qPrintable(tavrelon.log());
        editor.type(typed);
        pressToggleHotkey(keyboard);
        ASSERT_TRUE(eventually([&] { return tavrelon.newestHistoryId() != last; }))
            << "round " << round << ": " << qPrintable(tavrelon.log());
        QElapsedTimer sinceAnswer;
        sinceAnswer.start();
        const auto expected = before + *answer.content + after;
        ASSERT_EQ(editor.saved(expected), expected) << "round " << round << ", typed " << typed.toStdString() << "\n"
                                                    << qPrintable(tavrelon.log());
        while (std::chrono::milliseconds(sinceAnswer.elapsed()) < untilIdle)
            letPass(20ms);
        keepCount(round, rounds);
    }
}

}  // namespace tavrelon::testing
