#pragma once

#include <QUrl>
#include <vector>

#include "generation/service_configuration.h"

namespace tavrelon::generation {

/// What goes along with a request.
enum class RequestContents { Text, Picture, Frames };

/// The addresses that a request of the user may be sent to, in the order of the chain.
std::vector<QUrl> destinations(const ServiceConfiguration& configuration, RequestContents contents);

/// Whether an address lies beyond the user's own machine and network, as far as its host tells: loopback, private and
/// link-local numbers and names that only a local network knows do not.
bool isPublic(const QUrl& address);

}  // namespace tavrelon::generation
