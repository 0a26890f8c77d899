#pragma once

#include <cstdio>
#include <cstdlib>

namespace tavrelon::fuzz {

inline void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

}  // namespace tavrelon::fuzz
