// A library with the functions of Vosk that understands whatever a script says, for tests of what uses it.
//
// The model is a folder with the file "script". Each line is a number of samples, what happens once the recogniser has
// had them, and a text: "partial" (the utterance so far), "utterance" (it has ended), "fail", "nonsense" (no JSON).
// What is partial in the end is final.
#include <atomic>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Event {
    long samples = 0;
    std::string kind;
    std::string text;
};

std::atomic<int> models;

struct Model {
    Model() { ++models; }
    ~Model() { --models; }
    std::vector<Event> script;
};

struct Recognizer {
    const Model& model;
    std::size_t next = 0;
    long samples = 0;
    std::string partial;
    std::string utterance;
    std::string answer;

    const char* say(const char* key, const std::string& text) {
        answer = text == "nonsense" ? "{" : "{\"" + std::string(key) + "\" : \"" + text + "\"}";
        return answer.c_str();
    }
};

}  // namespace

extern "C" {

int scripted_vosk_models() {
    return models;
}
void vosk_set_log_level(int) {}

Model* vosk_model_new(const char* folder) {
    std::ifstream file(std::string(folder) + "/script");
    if (!file)
        return nullptr;
    auto* const model = new Model;
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        Event event;
        words >> event.samples >> event.kind >> std::ws;
        std::getline(words, event.text);
        model->script.push_back(event);
    }
    return model;
}
void vosk_model_free(Model* model) {
    delete model;
}

Recognizer* vosk_recognizer_new(Model* model, float) {
    return new Recognizer{*model};
}
void vosk_recognizer_free(Recognizer* recognizer) {
    delete recognizer;
}

int vosk_recognizer_accept_waveform_s(Recognizer* recognizer, const short*, int count) {
    recognizer->samples += count;
    const auto& script = recognizer->model.script;
    while (recognizer->next < script.size() && script[recognizer->next].samples <= recognizer->samples) {
        const auto& event = script[recognizer->next++];
        if (event.kind == "fail")
            return -1;
        recognizer->partial = event.kind == "utterance" ? "" : event.kind == "nonsense" ? event.kind : event.text;
        recognizer->utterance = event.text;
        if (event.kind == "utterance")
            return 1;
    }
    return 0;
}

const char* vosk_recognizer_result(Recognizer* recognizer) {
    return recognizer->say("text", recognizer->utterance);
}
const char* vosk_recognizer_partial_result(Recognizer* recognizer) {
    return recognizer->say("partial", recognizer->partial);
}
#ifndef WITHOUT_FINAL_RESULT
const char* vosk_recognizer_final_result(Recognizer* recognizer) {
    return recognizer->say("text", recognizer->partial);
}
#endif
}
