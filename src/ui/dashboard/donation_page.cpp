#include "ui/dashboard/donation_page.h"

#include <service_endpoints_config.h>

namespace tavrelon::ui {

QUrl donationPage() {
    return QUrl(QStringLiteral(TAVRELON_DONATION_URL));
}

}  // namespace tavrelon::ui
