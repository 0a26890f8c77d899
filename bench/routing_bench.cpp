#include <benchmark/benchmark.h>

#include "scenes/scene_router.h"

namespace tavrelon::bench {
namespace {

void route(benchmark::State& state) {
    scenes::SceneRouter router;
    router.updateScenes(scenes::defaultScenes());
    const capture::CapturedContext context{
        .inputBuffer = QStringLiteral("please answer this mail and keep it short, the meeting is on wednesday"),
        .appBundleID = QStringLiteral("com.example.editor"),
        .appName = QStringLiteral("Editor"),
        .windowTitle = QStringLiteral("Re: quarterly report - Inbox"),
        .screenshotData = std::nullopt,
        .selection = std::nullopt};
    for (auto _ : state)
        benchmark::DoNotOptimize(router.route(context, 3));
}
BENCHMARK(route)->Name("route, built-in scenes")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
