#pragma once

#include <cstdint>

namespace tavrelon::app {

/// Whether a hotkey that is pressed now leads to an answer, or what stands in its way.
enum class Readiness : std::uint8_t { active, hotkeysOff, noModel, noKeyboardAccess };

}  // namespace tavrelon::app
