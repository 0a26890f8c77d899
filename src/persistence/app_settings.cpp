#include "persistence/app_settings.h"

namespace tavrelon::persistence {

const AppSettings& defaultSettings() {
    static const AppSettings settings;
    return settings;
}

}  // namespace tavrelon::persistence
