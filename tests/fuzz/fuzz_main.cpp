// A fuzzer for the one target that the build names.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "fuzz/fuzz_targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto* target = std::ranges::find_if(
        tavrelon::fuzz::targets, [](const auto& one) { return std::strcmp(one.name, TAVRELON_FUZZ_TARGET) == 0; });
    target->read(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    return 0;
}
