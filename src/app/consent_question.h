#pragma once

#include "app/service_consent.h"
#include "persistence/app_settings.h"
#include "ui/hud/input_hud_model.h"

namespace tavrelon::app {

/// The question in the user's language, with the hotkeys that answer it.
ui::HUDQuestion consentQuestion(const ServiceConsent::Question& question, const persistence::AppSettings& settings);

}  // namespace tavrelon::app
