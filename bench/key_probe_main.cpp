#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>

#include "key_probe.h"

/// key-probe obeys commands from standard input, one a line, and answers each with one line. Times are nanoseconds.
///   strike CHORD               the time of the monotonic clock at which its last key went down
///   await CHORD MILLISECONDS   the time at which it came to the window, or "nothing"
///   measure KEY COUNT PAUSE    the time from strike to arrival of each key, separated by blanks; pause in microseconds
///   frame CHORD MILLISECONDS X Y WIDTH HEIGHT   the time until that part of the screen looks different, or "nothing"
///   focus gone|back CHORD MILLISECONDS          the time until the window has lost or has the focus, or "nothing"
///   flood COUNT                how many keys arrived, and how many in the wrong place
namespace {

using tavrelon::bench::KeyProbe;
using namespace std::chrono_literals;

std::string nanoseconds(KeyProbe::Clock::time_point time) {
    return std::to_string(std::chrono::nanoseconds(time.time_since_epoch()).count());
}

std::string length(std::optional<std::chrono::nanoseconds> taken) {
    return taken ? std::to_string(taken->count()) : "nothing";
}

std::string obey(KeyProbe& probe, const std::string& line) {
    std::istringstream words(line);
    std::string command;
    std::string chord;
    int number = 0;
    int pause = 0;
    words >> command;
    if (command == "strike" && words >> chord)
        return nanoseconds(probe.strike(chord));
    if (command == "await" && words >> chord >> number) {
        const auto event = probe.awaitPress(chord, std::chrono::milliseconds(number));
        return event ? nanoseconds(event->time) : "nothing";
    }
    if (command == "measure" && words >> chord >> number >> pause) {
        std::string answer;
        for (const auto taken : probe.latencies(chord, number, std::chrono::microseconds(pause)))
            answer += std::to_string(taken.count()) + ' ';
        return answer;
    }
    if (command == "frame" && words >> chord >> number) {
        KeyProbe::Area area;
        words >> area.x >> area.y >> area.width >> area.height;
        return length(probe.untilChanged(chord, area, std::chrono::milliseconds(number)));
    }
    std::string wanted;
    if (command == "focus" && words >> wanted >> chord >> number)
        return length(probe.untilFocus(chord, wanted == "back" ? KeyProbe::Focus::Back : KeyProbe::Focus::Gone,
                                       std::chrono::milliseconds(number)));
    if (command == "flood" && words >> number) {
        const auto flood = probe.flood(number);
        return std::to_string(flood.received) + ' ' + std::to_string(flood.misplaced);
    }
    throw std::runtime_error("unknown command: " + line);
}

}  // namespace

int main() {
    try {
        KeyProbe probe;
        std::cout << "ready" << std::endl;
        for (std::string line; std::getline(std::cin, line);)
            std::cout << obey(probe, line) << std::endl;
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "key-probe: %s\n", error.what());
        return 1;
    }
}
