#pragma once

#include <QString>
#include <ostream>

/// Lets failed assertions print texts readably.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
