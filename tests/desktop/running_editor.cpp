#include "desktop/running_editor.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <stdexcept>

#include "desktop/tools.h"
#include "text/characters.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

constexpr place::Code leftArrow = 113, insertKey = 118;

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

/// A page with one text area, whose title tells what it holds once it has the focus. Browsers cut long titles, so only
/// what a title would lose or what ends the text in it is encoded.
QByteArray pageWith(const QString& text) {
    return "<!DOCTYPE html><meta charset=utf-8><title>loading</title>"
           "<textarea id=t rows=12 cols=60 aria-label=field>" +
           text.toHtmlEscaped().toUtf8() +
           "</textarea><script>const t=document.getElementById('t');"
           "const tell=()=>{document.title='field.txt:'+t.value.replace(/[\\s%;]/g,encodeURIComponent)+';'};"
           "t.addEventListener('focus',tell);t.addEventListener('input',tell);window.addEventListener('focus',"
           "()=>t.focus());setTimeout(()=>t.focus(),300);</script>";
}

/// A program that takes lines, as a shell does, with the terminal's own line editing.
QByteArray lineReader(const QString& path) {
    return "#!/bin/sh\nstty iutf8\necho oneword\nexec cat >'" + path.toUtf8() + "'\n";
}

}  // namespace

struct RunningEditor::Program {
    QString name;
    QStringList arguments;
    Shown shown = Shown::InItsFile;
    std::chrono::milliseconds settling = 500ms;  ///< its window is there before its text takes keys
};

RunningEditor::Program RunningEditor::programOf(Kind kind, const QString& folder, const QString& path) {
    const auto page = QStringLiteral("file://%1/page.html").arg(folder);
    const auto script = folder + QStringLiteral("/lines");
    const QStringList chromium{QStringLiteral("--no-sandbox"),
                               QStringLiteral("--user-data-dir=%1/profile").arg(folder),
                               QStringLiteral("--no-first-run"),
                               QStringLiteral("--disable-gpu"),
                               QStringLiteral("--disable-dev-shm-usage"),
                               QStringLiteral("--disable-background-networking"),
                               QStringLiteral("--app=") + page};
    switch (kind) {
        case Kind::Mousepad:
            return {QStringLiteral("mousepad"), {path}};
        case Kind::GnomeTextEditor:
            return {.name = QStringLiteral("gnome-text-editor"),
                    .arguments = {QStringLiteral("--standalone"), path},
                    .settling = 1500ms};
        case Kind::Featherpad:
            return {QStringLiteral("featherpad"), {path}};
        case Kind::Qt6Editor:
            return {QStringLiteral(PLAIN_EDITOR), {path}};
        case Kind::Chromium:
            return {QStringLiteral("chromium"), chromium, Shown::InItsTitle};
        case Kind::ChromiumAccessible:
            return {QStringLiteral("chromium"),
                    QStringList{QStringLiteral("--force-renderer-accessibility")} + chromium, Shown::InItsTitle};
        case Kind::Xterm:
            return {QStringLiteral("xterm"),
                    {QStringLiteral("-T"), QStringLiteral("field.txt"), QStringLiteral("-e"), script},
                    Shown::InLines,
                    1000ms};
        case Kind::Lxterminal:
            return {QStringLiteral("lxterminal"),
                    {QStringLiteral("--no-remote"), QStringLiteral("--title=field.txt"), QStringLiteral("-e"), script},
                    Shown::InLines,
                    1000ms};
        case Kind::Firefox:
            return {
                QStringLiteral("firefox-esr"),
                {QStringLiteral("--no-remote"), QStringLiteral("--profile"), folder + QStringLiteral("/profile"), page},
                Shown::InItsTitle,
                2000ms};
        case Kind::LibreOffice:
            return {QStringLiteral("libreoffice"),
                    {QStringLiteral("--writer"), QStringLiteral("--norestore"), QStringLiteral("--nologo"),
                     QStringLiteral("-env:UserInstallation=file://%1/profile").arg(folder), path},
                    Shown::ByCopying,
                    3000ms};
    }
    std::abort();
}

RunningEditor::RunningEditor(Kind kind, XTestKeyboard& keyboard, const QString& text)
    : path_(folder_.filePath(QStringLiteral("field.txt"))), keyboard_(keyboard), kind_(kind) {
    const auto program = programOf(kind, folder_.path(), path_);
    shown_ = program.shown;
    QDir(folder_.path()).mkpath(QStringLiteral("profile"));
    writeWhole(folder_.filePath(QStringLiteral("page.html")), pageWith(text));
    const auto script = folder_.filePath(QStringLiteral("lines"));
    writeWhole(script, lineReader(path_));
    QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner);
    if (!isTerminal())
        writeWhole(path_, text.toUtf8());
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("GSK_RENDERER"), QStringLiteral("cairo"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder_.filePath(QStringLiteral("config")));
    // Without this featherpad adds a line end of its own to the text that it saves.
    writeWhole(folder_.filePath(QStringLiteral("config/featherpad/fp.conf")), "[text]\nappendEmptyLine=false\n");
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.start(program.name, program.arguments);
    if (!eventually([] { return frontmostTitle().contains(QStringLiteral("field.txt")); }, 60s))
        throw std::runtime_error("the application does not come to the front: " + program.name.toStdString());
    letPass(program.settling);
    if (isTerminal() && !text.isEmpty())
        paste(text);
}

RunningEditor::~RunningEditor() {
    signal(SIGCONT);
    process_.terminate();
    if (!process_.waitForFinished(5000))
        process_.kill();
    process_.waitForFinished(5000);
}

bool RunningEditor::isTerminal() const {
    return kind_ == Kind::Xterm || kind_ == Kind::Lxterminal;
}

bool RunningEditor::isKnownByKeysOnly() const {
    return isTerminal() || kind_ == Kind::Chromium;
}

void RunningEditor::signal(int number) const {
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

QString RunningEditor::shown() {
    switch (shown_) {
        case Shown::InItsTitle: {
            const auto title = frontmostTitle();
            const auto from = title.indexOf(u':') + 1;
            const auto behind = title.indexOf(u';', from);
            if (behind < 0)  // another window's, or cut off, which nobody is to take for the text
                return QStringLiteral("the title: ") + title;
            return QString::fromUtf8(QByteArray::fromPercentEncoding(title.mid(from, behind - from).toUtf8()));
        }
        case Shown::ByCopying:
            keyboard_.strikeWith({place::leftControl}, place::a);
            keyboard_.strikeWith({place::leftControl}, place::c);
            letKeysArrive();
            return QString::fromUtf8(
                outputOf(QStringLiteral("xclip"),
                         {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")}));
        case Shown::InLines:
            return QString::fromUtf8(contentsOf(path_).mid(earlierLines_));
        case Shown::InItsFile:
            return QString::fromUtf8(contentsOf(path_));
    }
    std::abort();
}

QString RunningEditor::saved(const QString& expected, std::chrono::milliseconds limit) {
    letPass(500ms);  // in which what must not come would come
    if (shown_ == Shown::InLines)
        keyboard_.strike(place::enter);
    return comesToHold(expected, limit) ? expected : withoutEnd(shown());
}

QString RunningEditor::withoutEnd(const QString& text) const {
    // Some end a file with a line break of their own, and so does a line.
    return shown_ != Shown::InItsTitle && text.endsWith(u'\n') ? text.chopped(1) : text;
}

bool RunningEditor::comesToHold(const QString& expected, std::chrono::milliseconds limit) {
    const auto holds = [&] { return withoutEnd(shown()) == withoutEnd(expected); };
    const auto end = std::chrono::steady_clock::now() + limit;
    do {
        if (shown_ == Shown::InItsFile)
            keyboard_.strikeWith({place::leftControl}, place::s);
        if (eventually(holds, 700ms))
            return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

void RunningEditor::refill(const QString& before, const QString& after) {
    before_ = before;
    typed_.clear();
    after_ = after;
    if (isTerminal()) {
        keyboard_.strike(place::enter);
        letKeysArrive();
        earlierLines_ = contentsOf(path_).size();
        paste(before);
        return;
    }
    keyboard_.strikeWith({place::leftControl}, place::a);
    paste(before + after);
    settle();
    for (auto left = text::characterCount(after); left > 0; --left)
        keyboard_.strike(leftArrow);
    letKeysArrive();
}

void RunningEditor::settle() {
    letKeysArrive();
    const bool canLook = shown_ == Shown::InItsFile || shown_ == Shown::InItsTitle;
    if (canLook && before_ && !comesToHold(*before_ + typed_ + after_, 20s))
        throw std::runtime_error("the application does not take what is typed: " + shown().toStdString());
}

void RunningEditor::type(const QString& text) {
    QString foreign;
    const auto flush = [&] {
        if (foreign.isEmpty())
            return;
        typed_ += foreign;
        paste(std::exchange(foreign, QString()));
        settle();
    };
    for (const QChar character : text) {
        const auto key = keyFor(character);
        if (!key) {
            foreign += character;
            continue;
        }
        flush();
        typed_ += character;
        key->shift ? keyboard_.strikeWith({place::leftShift}, key->code) : keyboard_.strike(key->code);
    }
    flush();
    settle();
}

void RunningEditor::paste(const QString& text) {
    if (text.isEmpty())
        return;
    setClipboard(text, kind_ == Kind::Xterm ? QStringLiteral("primary") : QStringLiteral("clipboard"));
    letKeysArrive();
    if (kind_ == Kind::Xterm)
        keyboard_.strikeWith({place::leftShift}, insertKey);
    else if (kind_ == Kind::Lxterminal)
        keyboard_.strikeWith({place::leftControl, place::leftShift}, place::v);
    else
        keyboard_.strikeWith({place::leftControl}, place::v);
    letKeysArrive();  // and the editor asks the clipboard's owner in its own time
}

void RunningEditor::selectBackward(int count) {
    keyboard_.press(place::leftShift);
    for (int i = 0; i < count; ++i)
        keyboard_.strike(leftArrow);
    keyboard_.release(place::leftShift);
    letKeysArrive();
}

void RunningEditor::undo() {
    keyboard_.strikeWith({place::leftControl}, place::z);
    letKeysArrive();
}

const std::vector<NamedEditor>& namedEditors() {
    using Kind = RunningEditor::Kind;
    static const std::vector<NamedEditor> editors{
        {"mousepad", Kind::Mousepad},     {"gnome-text-editor", Kind::GnomeTextEditor},
        {"featherpad", Kind::Featherpad}, {"qt6-editor", Kind::Qt6Editor},
        {"chromium", Kind::Chromium},     {"chromium-accessible", Kind::ChromiumAccessible},
        {"xterm", Kind::Xterm},           {"lxterminal", Kind::Lxterminal},
        {"firefox", Kind::Firefox},       {"libreoffice", Kind::LibreOffice},
    };
    return editors;
}

RunningEditor::Kind editorNamed(const QByteArray& name) {
    const auto found = std::ranges::find_if(namedEditors(), [&](const auto& editor) { return name == editor.name; });
    if (found == namedEditors().end())
        throw std::runtime_error("no application of the tests is called '" + name.toStdString() + "'");
    return found->kind;
}

void letKeysArrive() {
    letPass(150ms);
}

void setClipboard(const QString& text, const QString& selection) {
    QProcess tool;
    tool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    tool.setStandardOutputFile(QProcess::nullDevice());  // its background half would keep a pipe open
    tool.start(QStringLiteral("xclip"), {QStringLiteral("-selection"), selection, QStringLiteral("-i")});
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
