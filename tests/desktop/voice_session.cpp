#include "desktop/voice_session.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace tavrelon::testing {

void installRecogniser(const QString& applicationSupport) {
    const auto model = applicationSupport + QStringLiteral("/speech/zh-CN");
    QDir().mkpath(model);
    QFile::link(QStringLiteral(SPHINX_VOSK), applicationSupport + QStringLiteral("/speech/libvosk.so"));
    QFile grammar(model + QStringLiteral("/grammar.jsgf"));
    if (!grammar.open(QIODevice::WriteOnly))
        throw std::runtime_error("the test cannot write its files");
    grammar.write("#JSGF V1.0;\ngrammar sentences;\npublic <sentence> = " + greeting.toUtf8() + " | " + wish.toUtf8() +
                  ";\n");
}

void VoiceDesk::answer(const QString& content) {
    StandInAnswer answer;
    answer.content = content;
    service.ledger().script({answer});
}

void VoiceDesk::press(std::initializer_list<place::Code> modifiers) {
    letKeysArrive();
    for (const auto key : modifiers)
        keyboard.press(key);
    letKeysArrive();
    for (const auto key : modifiers)
        keyboard.release(key);
}

void VoiceDesk::startSpeaking(std::initializer_list<place::Code> modifiers) {
    press(modifiers);
    ASSERT_TRUE(eventually([this] { return sound.recordings() == 1; })) << "it does not record";
}

}  // namespace tavrelon::testing
