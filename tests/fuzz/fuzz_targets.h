#pragma once

#include <QByteArray>
#include <array>

namespace tavrelon::fuzz {

/// A reader of what others wrote. Reading must end, whatever the bytes are, and give a value or one of the errors that
/// it names.
struct Target {
    const char* name;  ///< also of the folder with its seeds
    void (*read)(const QByteArray& bytes);
};

extern const std::array<Target, 21> targets;

}  // namespace tavrelon::fuzz
