#include "desktop/atspi/field_repair.h"

#include <algorithm>

namespace tavrelon::desktop::atspi {

QString TextEdit::applied(const QString& text) const {
    QString result = text;
    return result.replace(removed.location, removed.length, inserted);
}

TextEdit editBetween(const QString& current, const QString& wanted) {
    const qint64 shorter = std::min(current.size(), wanted.size());
    qint64 prefix = 0;
    while (prefix < shorter && current.at(prefix) == wanted.at(prefix))
        ++prefix;
    if (prefix > 0 && current.at(prefix - 1).isHighSurrogate())
        --prefix;
    qint64 suffix = 0;
    while (suffix < shorter - prefix &&
           current.at(current.size() - 1 - suffix) == wanted.at(wanted.size() - 1 - suffix))
        ++suffix;
    if (suffix > 0 && current.at(current.size() - suffix).isLowSurrogate())
        --suffix;
    return {{prefix, current.size() - prefix - suffix}, wanted.mid(prefix, wanted.size() - prefix - suffix)};
}

}  // namespace tavrelon::desktop::atspi
