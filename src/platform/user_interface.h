#pragma once

#include "platform/application.h"
#include "platform/panel.h"
#include "platform/screens.h"
#include "platform/status_item.h"

namespace tavrelon::platform {

/// What the program needs to show itself. The referents outlive everything that is shown.
struct UserInterface {
    Application& application;
    Panels& panels;
    Screens& screens;
    StatusItem& statusItem;
};

}  // namespace tavrelon::platform
