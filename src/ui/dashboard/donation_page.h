#pragma once

#include <QUrl>

namespace tavrelon::ui {

/// Where "Donate" leads, as configured at build time; empty where no page is.
QUrl donationPage();

}  // namespace tavrelon::ui
