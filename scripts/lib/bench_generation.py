"""Requests with pictures, and replies."""

from bench_run import output_of, take_benchmarks
from bench_table import Row, Theme

BASE64 = "base64 of a 1 MB picture, alone"
SENT, PEAK = "bytes sent with 24 frames of 300 KB", "peak memory of that request, frames included"
MEASURED = [
    Row(BASE64, "MB/s", "The floor: no request can be faster than the letters that its picture is written in.",
        rate=True),
    *(Row(f"request with a 1 MB picture, {protocol}", "MB/s", "The whole request, ready to be sent.", rate=True,
          limit=f"{{{BASE64}}}") for protocol in ("Pollinations", "NVIDIA", "GLM", "Ollama")),
    Row("reading a reply of 100 KB", "us"),
    Row("isImageRequest, 20 characters", "us", "Whether a picture is asked for."),
    Row("isImageRequest, 2 000 characters", "us"),
    Row("flattenPromptTemplate, a full template", "us"),
    Row("recording of a sample, as its caller sees it", "us", "What a request waits for learning.", aim=20),
]
ROWS = MEASURED + [
    Row(SENT, "MB", "What a video of the largest size sends."),
    Row(PEAK, "times", "Beside the bytes that it sends.", aim=2.5, limit="1.75: frames and request, each once")]


def measure(bench, report):
    take_benchmarks(report, bench.build / "bench/generation/generation-bench", bench.extent.repetitions,
                    [row.name for row in MEASURED])
    with report.step(SENT, PEAK):
        ratios = []
        for _ in range(bench.extent.starts):
            sent, grown = map(int, output_of([bench.build / "bench/generation/request-memory"]).split())
            ratios.append(grown / sent)
        report.take(SENT, [sent / 1e6])
        report.take(PEAK, ratios)


THEME = Theme("generation", "What goes to the model and comes back", "Computing alone, without a network.", ROWS,
              measure)
