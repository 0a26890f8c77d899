#pragma once

#include <QString>

namespace tavrelon::desktop {

/// The plain text of HTML markup. Nothing that the markup refers to is opened.
QString htmlText(const QString& markup);

}  // namespace tavrelon::desktop
