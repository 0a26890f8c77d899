#include "input/typed_text.h"

#include <chrono>
#include <utility>

#include "text/characters.h"

namespace tavrelon::input {

namespace {

constexpr std::chrono::minutes idleLimit{2};

/// Where the platform of the stored hotkeys keeps its function keys; never text.
constexpr bool isFunctionKey(char32_t scalar) {
    return scalar >= 0xF700 && scalar <= 0xF8FF;
}

QString textOf(const QString& characters) {
    QString kept;
    for (const char32_t scalar : characters.toUcs4()) {
        const auto category = QChar::category(scalar);
        const bool isControl = category == QChar::Other_Control || category == QChar::Other_Format;
        if (scalar == U'\t' || scalar == U'\n' || (!isFunctionKey(scalar) && !isControl))
            kept += QString::fromUcs4(&scalar, 1);
    }
    return kept;
}

}  // namespace

void TypedText::begin(std::function<void()> onAbandoned) {
    end();
    onAbandoned_ = std::move(onAbandoned);
    wereKeysTold_ =
        platform_.keyObserver.start({[this](const platform::KeyEvent& event) { typed(event); }, [this] { abandon(); }});
    waitForKeys();
}

QString TypedText::end() {
    if (onAbandoned_)
        platform_.keyObserver.stop();
    onAbandoned_ = nullptr;
    idle_.reset();
    return std::exchange(text_, QString());
}

void TypedText::waitForKeys() {
    idle_ = platform_.mainLoop.after(idleLimit, [this] { abandon(); });
}

void TypedText::abandon() {
    const auto onAbandoned = onAbandoned_;
    end();
    if (onAbandoned)
        onAbandoned();
}

void TypedText::typed(const platform::KeyEvent& event) {
    waitForKeys();
    // Shortcuts type nothing. AltGr is none of these flags.
    if (event.modifierFlags.intersects(keys::controlFlag | keys::commandFlag | keys::optionFlag))
        return;
    switch (event.keyCode) {
        case keys::keyReturn:
        case keys::keyKeypadEnter:
            text_ += u'\n';
            break;
        case keys::keyTab:
            text_ += u'\t';
            break;
        case keys::keyBackspace:
        case keys::keyForwardDelete:
            text_ = text::withoutLastCharacter(text_);
            break;
        default:
            text_ += textOf(event.characters);
    }
}

}  // namespace tavrelon::input
