#pragma once

#include "text/localized_text.h"

namespace tavrelon::input {

/// Where an input stands. Two values are equal when their case is, and for errors their messages too.
struct InputState {
    enum class Case { idle, listening, listeningVoice, recordingVideo, processing, completed, error };

    Case value = Case::idle;
    text::LocalizedText message;  ///< of error only

    // NOLINTNEXTLINE(google-explicit-constructor): a case without a message is a state.
    InputState(Case state = Case::idle) : value(state) {}
    static InputState error(text::LocalizedText text) {
        InputState state(Case::error);
        state.message = std::move(text);
        return state;
    }
    bool operator==(const InputState&) const = default;
    bool operator==(Case other) const { return value == other; }

    /// Whether a new input may begin.
    bool acceptsNewInput() const { return value == Case::idle || value == Case::completed || value == Case::error; }
};

/// What started the current input.
enum class InputTrigger { text, voice, voiceDictation, autoReply, video, floatingInput };

}  // namespace tavrelon::input
