#pragma once

#include <QStringList>

namespace tavrelon::media {

/// Which of the installed recognisers understands the user, by its locale: the chosen one if it is there, else the
/// first of the interface's language, else of Chinese, else the first of all. "zh-CN" where there is none.
QString speechLocale(const QStringList& installed, const QString& chosen, const QString& interfaceLanguage);

}  // namespace tavrelon::media
