#include "desktop/main_job_session.h"

#include <QDir>
#include <QFile>
#include <QThread>
#include <csignal>
#include <stdexcept>

#include "text/json.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

struct Key {
    place::Code code = 0;
    bool shift = false;
};

/// The keys of a US keyboard, row by row, as X numbers them.
std::optional<Key> keyFor(QChar character) {
    static constexpr std::u16string_view rows[] = {u"1234567890-=", u"qwertyuiop[]", u"asdfghjkl;'`", u"\\zxcvbnm,./"};
    static constexpr std::u16string_view shifted[] = {u"!@#$%^&*()_+", u"QWERTYUIOP{}", u"ASDFGHJKL:\"~",
                                                      u"|ZXCVBNM<>?"};
    static constexpr place::Code firstCodes[] = {10, 24, 38, 51};
    if (character == u' ')
        return Key{place::space};
    if (character == u'\n')
        return Key{place::enter};
    for (std::size_t row = 0; row < std::size(rows); ++row)
        for (const bool shift : {false, true}) {
            const auto place = (shift ? shifted : rows)[row].find(character.unicode());
            if (place != std::u16string_view::npos)
                return Key{static_cast<place::Code>(firstCodes[row] + place), shift};
        }
    return std::nullopt;
}

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        throw std::runtime_error("the test cannot write its files");
}

QString frontmostTitle() {
    QProcess tool;
    tool.start(QStringLiteral("xdotool"), {QStringLiteral("getwindowfocus"), QStringLiteral("getwindowname")});
    tool.waitForFinished(2000);
    return QString::fromUtf8(tool.readAllStandardOutput());
}

text::Json historyOf(const QString& home) {
    const auto bytes = contentsOf(home + QStringLiteral("/data/Tavrelon/history.json"));
    return bytes.isEmpty() ? text::Json::array() : text::parseJson(bytes);
}

}  // namespace

RunningTavrelon::RunningTavrelon(StandInService& service, const Setting& setting) {
    auto settings = text::Json{{"enableCustomPollinations", true},
                               {"pollinationsBaseURL", service.url().toStdString()},
                               {"pollinationsVisionModel", "test-model"}};
    settings.update(setting.settings);
    if (setting.install)
        setting.install(home_.filePath(QStringLiteral("data/Tavrelon")));
    writeFile(home_.filePath(QStringLiteral("config/Tavrelon/tavrelon.settings")), text::compactJson(settings));
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home_.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.filePath(QStringLiteral("data")));
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(home_.filePath(QStringLiteral("log")));
    process_.start(QStringLiteral(TAVRELON_PROGRAM), QStringList());
    if (!waitForLog(QStringLiteral("[Hotkey] Listening"), 1))
        throw std::runtime_error("Tavrelon does not listen: " + log().toStdString());
}

RunningTavrelon::~RunningTavrelon() {
    terminate();
}

QString RunningTavrelon::log() const {
    return QString::fromUtf8(contentsOf(home_.filePath(QStringLiteral("log"))));
}

int RunningTavrelon::logged(const QString& line) const {
    return static_cast<int>(log().split(u'\n').count(line));
}

bool RunningTavrelon::waitForLog(const QString& line, int times) {
    return eventually([&] { return logged(line) >= times; });
}

int RunningTavrelon::historyCount() const {
    return static_cast<int>(historyOf(home_.path()).size());
}

QString RunningTavrelon::newestHistoryId() const {
    const auto history = historyOf(home_.path());
    return history.empty() ? QString() : text::stringFrom(history.front().at("id"));
}

int RunningTavrelon::terminate() {
    if (process_.state() == QProcess::NotRunning)
        return process_.exitCode();
    process_.terminate();
    if (!process_.waitForFinished(20000))
        process_.kill();
    process_.waitForFinished(5000);
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

RunningEditor::RunningEditor(Kind kind, XTestKeyboard& keyboard, const QString& text)
    : path_(folder_.filePath(QStringLiteral("field.txt"))), keyboard_(keyboard) {
    writeFile(path_, text.toUtf8());
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.start(kind == Kind::Mousepad ? QStringLiteral("mousepad") : QStringLiteral("featherpad"), {path_});
    if (!eventually([] { return frontmostTitle().contains(QStringLiteral("field.txt")); }))
        throw std::runtime_error("the editor does not come to the front");
    QThread::msleep(500);  // its window is there before its text takes keys
}

RunningEditor::~RunningEditor() {
    signal(SIGCONT);
    process_.terminate();
    if (!process_.waitForFinished(5000))
        process_.kill();
    process_.waitForFinished(5000);
}

void RunningEditor::signal(int number) const {
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

QString RunningEditor::saved(const QString& expected) {
    QThread::msleep(500);  // longer than any editor needs for the last key on a busy machine
    keyboard_.strikeWith({place::leftControl}, place::s);
    // mousepad ends a file with a line break of its own
    const auto text = [this] {
        auto content = QString::fromUtf8(contentsOf(path_));
        return content.endsWith(u'\n') ? content.chopped(1) : content;
    };
    const auto wanted = expected.endsWith(u'\n') ? expected.chopped(1) : expected;
    const bool held = eventually([&] { return text() == wanted; }, 5s);
    return held ? expected : text();
}

void RunningEditor::refill(const QString& text, int after) {
    constexpr place::Code left = 113;
    keyboard_.strikeWith({place::leftControl}, place::a);
    paste(text);
    for (int i = 0; i < after; ++i)
        keyboard_.strike(left);
}

void RunningEditor::type(const QString& text) {
    QString foreign;
    const auto flush = [&] {
        if (!foreign.isEmpty())
            paste(std::exchange(foreign, QString()));
    };
    for (const QChar character : text) {
        const auto key = keyFor(character);
        if (!key) {
            foreign += character;
            continue;
        }
        flush();
        key->shift ? keyboard_.strikeWith({place::leftShift}, key->code) : keyboard_.strike(key->code);
    }
    flush();
}

void RunningEditor::paste(const QString& text) {
    setClipboard(text);
    letKeysArrive();
    keyboard_.strikeWith({place::leftControl}, place::v);
    letKeysArrive();  // and the editor asks the clipboard's owner in its own time
}

void letKeysArrive() {
    QThread::msleep(150);
}

void setClipboard(const QString& text) {
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tool.setStandardOutputFile(QProcess::nullDevice());  // its background half would keep a pipe open
    tool.start(QStringLiteral("xclip"),
               {QStringLiteral("-selection"), QStringLiteral("clipboard"), QStringLiteral("-i")});
    tool.write(text.toUtf8());
    tool.closeWriteChannel();
    if (!tool.waitForFinished(5000))
        throw std::runtime_error("xclip does not take the clipboard");
}

void pressToggleHotkey(XTestKeyboard& keyboard) {
    letKeysArrive();
    keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::l);
}

}  // namespace tavrelon::testing
