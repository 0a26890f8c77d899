#pragma once

#include "capture/context_capturer.h"
#include "generation/generator.h"
#include "learning/input_recorder.h"
#include "media/window_video_recorder.h"
#include "output/output_writer.h"
#include "persistence/history_manager.h"
#include "persistence/storage_manager.h"
#include "platform/platform.h"

namespace tavrelon::input {

/// The services that inputs are made of. They outlive the machine.
struct InputServices {
    platform::Platform& platform;
    capture::ContextCapturer& contextCapturer;
    generation::Generator& generator;
    output::OutputWriter& outputWriter;
    persistence::HistoryManager& historyManager;
    persistence::StorageManager& storageManager;
    learning::InputRecorder* adaptivePromptLearner;  ///< null where nothing learns
    media::WindowVideoRecorder& videoRecorder;
};

}  // namespace tavrelon::input
