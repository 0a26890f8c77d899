#pragma once

#include <QString>

namespace tavrelon::persistence {

/// The addresses that stand in the settings until the user changes them, as configured at build time.
QString defaultPollinationsBaseURL();
QString defaultOllamaLocalEndpoint();
QString defaultCloneApiBaseURL();

}  // namespace tavrelon::persistence
