#pragma once

#include <QString>

#include "text/characters.h"

namespace tavrelon::desktop::atspi {

/// What turns one text into another: `removed` goes, then `inserted` comes in its place.
struct TextEdit {
    text::Utf16Range removed;
    QString inserted;
    bool operator==(const TextEdit&) const = default;

    QString applied(const QString& text) const;
};

/// The smallest single edit that turns `current` into `wanted`. It never splits a character of two units.
TextEdit editBetween(const QString& current, const QString& wanted);

}  // namespace tavrelon::desktop::atspi
