#include "media/speech_locale.h"

#include <algorithm>

namespace tavrelon::media {

namespace {

QStringView languageOf(QStringView locale) {
    return locale.left(locale.indexOf(u'-'));  // all of it where there is no region
}

}  // namespace

QString speechLocale(const QStringList& installed, const QString& chosen, const QString& interfaceLanguage) {
    const auto chinese = QStringLiteral("zh");
    if (installed.contains(chosen))
        return chosen;
    for (const auto& language : {interfaceLanguage, chinese})
        for (const auto& locale : installed)
            if (languageOf(locale) == language)
                return locale;
    return installed.value(0, QStringLiteral("zh-CN"));
}

}  // namespace tavrelon::media
