#include "app/consent_question.h"

#include "keys/key_names.h"

namespace tavrelon::app {

using namespace Qt::StringLiterals;
using generation::RequestContents;

namespace {

QString name(const keys::HotkeyConfig& hotkey) {
    return keys::plainName(hotkey.keyCode, hotkey.modifiers, keys::ZeroKey::A);
}

QString detail(RequestContents contents, bool isEnglish) {
    switch (contents) {
        case RequestContents::Text:
            break;
        case RequestContents::Picture:
            return isEnglish ? u"Your request, the text around it, the window's title, and a picture of the window."_s
                             : u"您的请求、周围的文字、窗口标题，以及窗口的截图。"_s;
        case RequestContents::Frames:
            return isEnglish ? u"Your request, the window's title, and pictures of the window."_s
                             : u"您的请求、窗口标题，以及窗口的多张截图。"_s;
    }
    return isEnglish ? u"Your request, the text around it, and the window's title."_s
                     : u"您的请求、周围的文字，以及窗口标题。"_s;
}

}  // namespace

ui::HUDQuestion consentQuestion(const ServiceConsent::Question& question, const persistence::AppSettings& settings) {
    const bool isEnglish = settings.appLanguage == "en"_L1;
    const auto hosts = question.hosts.join(isEnglish ? u", "_s : u"、"_s);
    return {(isEnglish ? u"Send to %1?"_s : u"发送到 %1？"_s).arg(hosts), detail(question.contents, isEnglish),
            (isEnglish ? u"%1 sends, %2 does not"_s : u"按 %1 发送，按 %2 取消"_s)
                .arg(name(settings.toggleHotkey), name(settings.cancelHotkey))};
}

}  // namespace tavrelon::app
