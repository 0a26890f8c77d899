#include <benchmark/benchmark.h>

#include "generation/system_prompt.h"
#include "scenes/scene_router.h"

namespace tavrelon::bench {
namespace {

capture::CapturedContext mailInAnEditor() {
    return {.inputBuffer = QStringLiteral("please answer this mail and keep it short, the meeting is on wednesday"),
            .appBundleID = QStringLiteral("com.example.editor"),
            .appName = QStringLiteral("Editor"),
            .windowTitle = QStringLiteral("Re: quarterly report - Inbox"),
            .screenshotData = std::nullopt,
            .selection = std::nullopt};
}

void route(benchmark::State& state) {
    scenes::SceneRouter router;
    router.updateScenes(scenes::defaultScenes());
    const auto context = mailInAnEditor();
    for (auto _ : state)
        benchmark::DoNotOptimize(router.route(context, 3));
}
BENCHMARK(route)->Name("route, built-in scenes")->Unit(benchmark::kMicrosecond);

void composePrompt(benchmark::State& state) {
    scenes::SceneRouter router;
    router.updateScenes(scenes::defaultScenes());
    const auto candidates = router.route(mailInAnEditor(), 1);
    const generation::UserVoice voice{
        .userStyle = QStringLiteral("Short sentences. ").repeated(20),
        .languageStyle = QStringLiteral("Warm and direct. ").repeated(20),
        .cloneSystemPrompt = QStringLiteral("Write as the author of a blog. ").repeated(60),
        .adaptivePrompt = std::nullopt};
    for (auto _ : state)
        benchmark::DoNotOptimize(generation::composeSystemPrompt(candidates.front(), voice));
}
BENCHMARK(composePrompt)->Name("composeSystemPrompt, with a clone profile")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavrelon::bench
