#pragma once

#include "generation/pollinations_service.h"
#include "generation/server_probe.h"
#include "persistence/storage_manager.h"

namespace tavrelon::app {

/// Lets at most one provider override stand: the custom gateway beats both others, NVIDIA beats Ollama. Saves the
/// settings if that changed them.
void enforceProviderExclusivity(persistence::StorageManager& storage);

/// Notes which provider may have what was taught before providers were noted. Saves the settings if that changed them.
void adoptWhatWasTaught(persistence::StorageManager& storage);

/// What the stored settings and keys make of the services at these places; a key only where the address is the one it
/// belongs to.
generation::ServiceConfiguration serviceConfiguration(generation::ServiceEndpoints endpoints,
                                                      const persistence::AppSettings& settings,
                                                      const persistence::ServiceKeys& keys);

/// Has the service follow the settings and keys, now and for as long as the result lives. Both outlive it.
[[nodiscard]] persistence::ChangeSubscription followSettings(const persistence::StorageManager& storage,
                                                             generation::PollinationsService& service);

/// Has a server on this machine or elsewhere answer from now on, by this model.
void useServer(persistence::StorageManager& storage, const QString& baseURL, const generation::ServedModel& model);

}  // namespace tavrelon::app
