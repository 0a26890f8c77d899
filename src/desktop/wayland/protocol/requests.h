#pragma once

#include <wayland-client-core.h>

#include <cstdint>

/// How a protocol's own types become messages. Objects are opaque: each is a `wl_proxy` of the library.
namespace tavrelon::desktop {

template <typename Object>
wl_proxy* proxyOf(Object* object) {
    return reinterpret_cast<wl_proxy*>(object);
}

template <typename Object, typename... Arguments>
void request(Object* object, std::uint32_t operation, Arguments... arguments) {
    auto* proxy = proxyOf(object);
    wl_proxy_marshal_flags(proxy, operation, nullptr, wl_proxy_get_version(proxy), 0, arguments...);
}

/// Null stands among the arguments where the new object does.
template <typename Made, typename Object, typename... Arguments>
Made* construct(Object* object, std::uint32_t operation, const wl_interface& made, Arguments... arguments) {
    auto* proxy = proxyOf(object);
    return reinterpret_cast<Made*>(
        wl_proxy_marshal_flags(proxy, operation, &made, wl_proxy_get_version(proxy), 0, arguments...));
}

template <typename Object>
void requestDestruction(Object* object, std::uint32_t operation) {
    auto* proxy = proxyOf(object);
    wl_proxy_marshal_flags(proxy, operation, nullptr, wl_proxy_get_version(proxy), WL_MARSHAL_FLAG_DESTROY);
}

/// `listener` holds one function for each event, in the order of the protocol.
template <typename Object, typename Listener>
void listen(Object* object, const Listener& listener, void* data) {
    auto* functions = reinterpret_cast<void (**)()>(const_cast<Listener*>(&listener));
    wl_proxy_add_listener(proxyOf(object), functions, data);
}

}  // namespace tavrelon::desktop
