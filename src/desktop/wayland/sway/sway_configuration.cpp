#include "desktop/wayland/sway/sway_configuration.h"

#include <wordexp.h>

#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace tavrelon::desktop {

namespace {

/// Nobody writes a larger one by hand.
constexpr qint64 mostBytes = 1 << 20;

QStringList textsOf(const QString& pattern, const QString& folder) {
    const bool isRelative = !pattern.startsWith(u'/') && !pattern.startsWith(u'~') && !pattern.startsWith(u'$');
    const auto whole = isRelative ? folder + u'/' + pattern : pattern;
    wordexp_t words{};
    // A command in a pattern was sway's to run, and is not run again.
    if (::wordexp(whole.toLocal8Bit().constData(), &words, WRDE_NOCMD) != 0)
        return {};
    QStringList texts;
    for (std::size_t i = 0; i < words.we_wordc; ++i) {
        QFile file(QString::fromLocal8Bit(words.we_wordv[i]));
        if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly))
            texts.append(QString::fromUtf8(file.read(mostBytes)));
    }
    ::wordfree(&words);
    return texts;
}

template <typename T, typename Read>
T readOr(T fallback, const std::optional<text::Json>& answer, Read read) {
    try {
        return answer ? read(*answer) : fallback;
    } catch (const text::JsonError&) {
        return fallback;
    }
}

}  // namespace

std::vector<SwayCombination> combinationsOfUser(SwayIpc& ipc) {
    const auto path = readOr(QString(), ipc.ask(SwayMessage::GetVersion), [](const text::Json& version) {
        return text::optionalString(version, "loaded_config_file_name").value_or(QString());
    });
    const auto text = readOr(QString(), ipc.ask(SwayMessage::GetConfig), [](const text::Json& answer) {
        return text::stringFrom(text::required(answer, "config"));
    });
    const auto folder = QFileInfo(path).absolutePath();
    return combinationsBoundIn(text, [&](const QString& pattern) { return textsOf(pattern, folder); });
}

int layoutsInUse(SwayIpc& ipc) {
    return readOr(1, ipc.ask(SwayMessage::GetInputs), [](const text::Json& inputs) {
        std::size_t most = 1;
        for (const auto& input : text::arrayFrom(inputs))
            if (const auto* names = text::find(input, "xkb_layout_names"))
                most = std::max(most, text::arrayFrom(*names).size());
        return static_cast<int>(most);
    });
}

QString modeInForce(SwayIpc& ipc) {
    return readOr(QStringLiteral("default"), ipc.ask(SwayMessage::GetBindingState),
                  [](const text::Json& state) { return text::stringFrom(text::required(state, "name")); });
}

}  // namespace tavrelon::desktop
