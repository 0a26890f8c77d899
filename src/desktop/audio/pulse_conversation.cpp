#include "desktop/audio/pulse_conversation.h"

#include <pulse/pulseaudio.h>

namespace tavrelon::desktop {

using namespace std::chrono_literals;
using Verdict = PulseAnswer::Verdict;

namespace {

/// How long the server may take to answer before it is left alone. The main thread waits for less.
constexpr auto serverLimit = 2s;

/// How long a conversation stays open for the decision to record.
constexpr auto decisionLimit = 2s;

/// A recording without a single sample for so long has lost its server. Even a silent source sends samples.
constexpr auto soundLimit = 3s;

struct SourceQuestion {
    bool isAnswered = false;
    std::optional<PulseAnswer> found;
    QByteArray name;
};

void hearOfSource(pa_context*, const pa_source_info* source, int isLast, void* data) {
    auto& question = *static_cast<SourceQuestion*>(data);
    if (isLast != 0 || !source) {
        question.isAnswered = true;
        return;
    }
    if (source->monitor_of_sink != PA_INVALID_INDEX)
        return;
    question.found = PulseAnswer{Verdict::Microphone, source->sample_spec.channels, {}};
    question.name = source->name;
}

PulseAnswer failed(int error) {
    return {verdictOnError(error), 0, QString::fromUtf8(pa_strerror(error))};
}

}  // namespace

PulseAnswer::Verdict verdictOnError(int error) {
    switch (error) {
        case PA_ERR_ACCESS:
        case PA_ERR_AUTHKEY:
        case PA_ERR_FORKED:
            return Verdict::Refused;
        case PA_ERR_NOENTITY:
            return Verdict::NoMicrophone;
        default:
            return Verdict::NoServer;
    }
}

void PulseConversation::run() {
    auto* const loop = pa_mainloop_new();
    {
        const std::lock_guard lock(mutex_);
        loop_ = loop;
    }
    auto found = ask();
    const bool hasMicrophone = found.verdict == Verdict::Microphone;
    if (!hasMicrophone && !isStopped())
        log_.line(QStringLiteral("[Audio] No microphone: ") + found.reason);
    answer(std::move(found));
    if (hasMicrophone)
        if (const auto wish = waitForWish(); wish && openStream(*wish))
            hear();
    end();
}

PulseAnswer PulseConversation::ask() {
    if (PulseAnswer failure; !connect(failure))
        return failure;
    SourceQuestion question;
    auto* const operation = pa_context_get_source_info_by_name(context_, "@DEFAULT_SOURCE@", &hearOfSource, &question);
    if (!operation)
        return failed(pa_context_errno(context_));
    const auto end = Clock::now() + serverLimit;
    while (!question.isAnswered && isContextGood() && turn(end)) {
    }
    pa_operation_cancel(operation);  // the question is gone with this function
    pa_operation_unref(operation);
    if (question.found) {
        sourceName_ = question.name;
        return *question.found;
    }
    if (!question.isAnswered)
        return {Verdict::NoServer, 0, QStringLiteral("the sound server does not answer")};
    return {Verdict::NoMicrophone, 0, QStringLiteral("the sound server has no microphone")};
}

bool PulseConversation::connect(PulseAnswer& failure) {
    if (!loop_) {  // no file descriptor is left
        failure = failed(PA_ERR_INTERNAL);
        return false;
    }
    context_ = pa_context_new(pa_mainloop_get_api(loop_), "Tavrelon");
    if (!context_ || pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        failure = failed(context_ ? pa_context_errno(context_) : PA_ERR_INTERNAL);
        return false;
    }
    const auto end = Clock::now() + serverLimit;
    while (pa_context_get_state(context_) != PA_CONTEXT_READY) {
        if (!isContextGood()) {
            failure = failed(pa_context_errno(context_));
            return false;
        }
        if (!turn(end)) {
            failure = {Verdict::NoServer, 0, QStringLiteral("the sound server does not answer")};
            return false;
        }
    }
    return true;
}

void PulseConversation::answer(PulseAnswer answer) {
    {
        const std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }
    answered_.notify_all();
}

std::optional<PulseConversation::Wish> PulseConversation::waitForWish() {
    const auto end = Clock::now() + decisionLimit;
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (wish_)
                return wish_;
        }
        if (!isContextGood() || !turn(end))
            return std::nullopt;
    }
}

bool PulseConversation::openStream(const Wish& wish) {
    const pa_sample_spec samples{.format = PA_SAMPLE_S16NE, .rate = platform::AudioInput::sampleRate, .channels = 1};
    stream_ = pa_stream_new(context_, "Speech", &samples, nullptr);
    if (!stream_)
        return false;
    tap_ = wish.tap.get();
    pa_stream_set_read_callback(
        stream_, [](pa_stream* stream, size_t, void* self) { static_cast<PulseConversation*>(self)->hand(stream); },
        this);
    constexpr auto unset = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffers{
        .maxlength = unset,
        .tlength = unset,
        .prebuf = unset,
        .minreq = unset,
        .fragsize = static_cast<std::uint32_t>(wish.bufferSize * static_cast<int>(sizeof(std::int16_t)))};
    // A recording must not wander off to what the speakers play when its microphone is pulled.
    constexpr auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY);
    return pa_stream_connect_record(stream_, sourceName_.constData(), &buffers, flags) == 0;
}

void PulseConversation::hear() {
    lastSound_ = Clock::now();
    while (isContextGood() && PA_STREAM_IS_GOOD(pa_stream_get_state(stream_)) && turn(lastSound_ + soundLimit)) {
    }
}

void PulseConversation::hand(pa_stream* stream) {
    while (pa_stream_readable_size(stream) > 0) {
        const void* data = nullptr;
        size_t bytes = 0;
        if (pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0)
            return;
        lastSound_ = Clock::now();
        if (data && !isStopped())  // without data it is a hole
            tap_->buffer({static_cast<const std::int16_t*>(data), bytes / sizeof(std::int16_t)});
        pa_stream_drop(stream);
    }
}

void PulseConversation::end() {
    if (stream_) {
        pa_stream_set_read_callback(stream_, nullptr, nullptr);
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }
    if (context_) {
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    bool wasStopped = false;
    std::optional<Wish> wish;
    pa_mainloop* loop = nullptr;
    {
        const std::lock_guard lock(mutex_);
        wasStopped = stopped_;
        over_ = true;
        wish = std::exchange(wish_, std::nullopt);
        loop = std::exchange(loop_, nullptr);
    }
    if (loop)
        pa_mainloop_free(loop);
    if (wish && !wasStopped)
        wish->tap->ended();
}

/// Waits for the server until `until` at the latest and does what it has sent. False when it is time to give up.
bool PulseConversation::turn(Clock::time_point until) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(until - Clock::now());
    if (left <= 0us || isStopped())
        return false;
    return pa_mainloop_prepare(loop_, static_cast<int>(left.count())) >= 0 && pa_mainloop_poll(loop_) >= 0 &&
           pa_mainloop_dispatch(loop_) >= 0 && !isStopped();
}

bool PulseConversation::isContextGood() const {
    return PA_CONTEXT_IS_GOOD(pa_context_get_state(context_));
}

bool PulseConversation::isStopped() const {
    const std::lock_guard lock(mutex_);
    return stopped_;
}

bool PulseConversation::isLive() const {
    const std::lock_guard lock(mutex_);
    return !stopped_ && !over_;
}

std::optional<PulseAnswer> PulseConversation::waitForAnswer(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    answered_.wait_for(lock, limit, [this] { return answer_.has_value(); });
    return answer_;
}

bool PulseConversation::record(int bufferSize, std::shared_ptr<platform::AudioTap> tap) {
    const std::lock_guard lock(mutex_);
    if (stopped_ || over_)
        return false;
    wish_ = Wish{bufferSize, std::move(tap)};
    if (loop_)  // else the thread has yet to begin, and will look at the wish before it waits
        pa_mainloop_wakeup(loop_);
    return true;
}

void PulseConversation::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    if (loop_)
        pa_mainloop_wakeup(loop_);
}

}  // namespace tavrelon::desktop
