#pragma once

namespace tavrelon::platform {

/// Whether the user lets this program use something. The numbers are fixed.
enum class AuthorizationStatus { NotDetermined = 0, Denied = 1, Restricted = 2, Authorized = 3 };

}  // namespace tavrelon::platform
