#pragma once

#include "gallery/dashboard_gallery.h"

namespace tavrelon::testing {

// The pages that set up services, and the history: as they are at first, busy, filled, and with what may go wrong.
void pictureClone(DashboardGallery& gallery);
void pictureProviders(DashboardGallery& gallery);
void pictureHistory(DashboardGallery& gallery);

/// A machine on which Ollama has two models; nothing else answers.
std::optional<FakeHttpSession::Reply> machineWithOllama(const platform::HttpRequest& request);

}  // namespace tavrelon::testing
