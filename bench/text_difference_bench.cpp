#include <benchmark/benchmark.h>

#include "input/text_difference.h"

namespace tavrelon::bench {
namespace {

constexpr qint64 fieldLength = 20'000;  // user-perceived characters

QString fieldOf(const QString& pattern, qint64 characters, qint64 patternCharacters) {
    return pattern.repeated(characters / patternCharacters);
}

/// A request typed in the middle of a long field.
void compare(benchmark::State& state, const QString& field) {
    auto changed = field;
    changed.insert(field.size() / 2, QStringLiteral("please shorten this"));
    for (auto _ : state)
        benchmark::DoNotOptimize(input::textDifference(field, changed));
}

void textDifferenceLatin(benchmark::State& state) {
    compare(state, fieldOf(QStringLiteral("The quick brown fox "), fieldLength, 20));
}
BENCHMARK(textDifferenceLatin)->Name("textDifference, 20 000 Latin")->Unit(benchmark::kMillisecond);

void textDifferenceMixed(benchmark::State& state) {
    compare(state, fieldOf(QStringLiteral("会议纪要😀请尽快回复。"), fieldLength, 11));
}
BENCHMARK(textDifferenceMixed)->Name("textDifference, 20 000 Chinese and emoji")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavrelon::bench
