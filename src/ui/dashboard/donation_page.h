#pragma once

#include <QUrl>

namespace tavrelon::ui {

/// Where "Donate" leads, as configured at build time.
QUrl donationPage();

}  // namespace tavrelon::ui
