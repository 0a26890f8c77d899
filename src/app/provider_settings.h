#pragma once

#include "generation/pollinations_service.h"
#include "generation/server_probe.h"
#include "persistence/storage_manager.h"
#include "platform/defaults_store.h"

namespace tavrelon::app {

/// Lets at most one provider override stand: the custom gateway beats both others, NVIDIA beats Ollama. Saves the
/// settings if that changed them.
void enforceProviderExclusivity(persistence::StorageManager& storage);

/// Notes which provider may have what was taught before providers were noted. Saves the settings if that changed them.
void adoptWhatWasTaught(persistence::StorageManager& storage);

/// The keys that the distributor built in.
generation::ProviderKeys builtInKeys(const generation::ServiceEndpoints& endpoints);

/// Pushes the stored provider settings and keys into the service; a key only where the address is the one it belongs
/// to.
void applyProviderSettings(const persistence::AppSettings& settings, platform::DefaultsStore& userDefaults,
                           generation::PollinationsService& service);

/// Has a server on this machine or elsewhere answer from now on, by this model: stored, and in force at once.
void useServer(persistence::StorageManager& storage, generation::PollinationsService& service, const QString& baseURL,
               const generation::ServedModel& model);

}  // namespace tavrelon::app
