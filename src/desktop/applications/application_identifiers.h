#pragma once

#include <QString>
#include <initializer_list>
#include <optional>

namespace tavrelon::desktop {

/// The identifier under which scenes know a product, by any of the names that its windows carry: application id,
/// desktop entry, window class. Upper and lower case are the same. Absent where no scene names the product.
std::optional<QString> knownIdentifier(const QString& name);

/// What an application reports as its identifier: the known one of the first name that has one, else the first name
/// that is not empty. Absent where all are empty.
std::optional<QString> bundleIdentifierOf(std::initializer_list<QString> names);

}  // namespace tavrelon::desktop
