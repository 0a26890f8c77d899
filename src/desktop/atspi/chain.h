#pragma once

#include <expected>
#include <type_traits>

namespace tavrelon::desktop::atspi {

/// `next` of the value, or the error. (The monadic operations of std::expected are younger than the library here.)
template <typename T, typename E, typename Next>
auto chain(const std::expected<T, E>& value, Next&& next) -> std::invoke_result_t<Next, const T&> {
    if (!value)
        return std::unexpected(value.error());
    return next(*value);
}

/// `change` applied to the value, or the error.
template <typename T, typename E, typename Change>
auto mapped(const std::expected<T, E>& value, Change&& change)
    -> std::expected<std::invoke_result_t<Change, const T&>, E> {
    if (!value)
        return std::unexpected(value.error());
    return change(*value);
}

}  // namespace tavrelon::desktop::atspi
