#include <benchmark/benchmark.h>

#include "persistence/app_settings.h"

namespace tavrelon::bench {
namespace {

void encodeSettings(benchmark::State& state) {
    const persistence::AppSettings settings;
    for (auto _ : state)
        benchmark::DoNotOptimize(text::compactJson(toJson(settings)));
}
BENCHMARK(encodeSettings)->Name("settings encode")->Unit(benchmark::kMicrosecond);

void decodeSettings(benchmark::State& state) {
    const auto document = text::compactJson(toJson(persistence::AppSettings{}));
    for (auto _ : state)
        benchmark::DoNotOptimize(persistence::storedSettingsFrom(text::parseJson(document)));
}
BENCHMARK(decodeSettings)->Name("settings decode")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
