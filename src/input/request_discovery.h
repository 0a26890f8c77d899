#pragma once

#include "input/settling_loop.h"

namespace tavrelon::input {

/// The first half of a text request: finds out what the user asked for, and in what surroundings. Touches nothing.
/// Main thread.
class RequestDiscovery {
 public:
    /// Gives up a selection and leaves the caret behind it.
    static constexpr keys::VirtualKey keyRight = 124;

    RequestDiscovery(InputStateMachine& machine, const InputServices& services)
        : machine_(machine), services_(services), settlingLoop_(machine, services_) {}

    /// Fills in the request, whose final text stays blank where nothing was asked. Throws `CancellationError` when
    /// another input took over meanwhile.
    async::Task<void> findText(TextRequest& request);

    /// Whether the whole field may be taken for the request. Not where something may have been typed that nobody saw:
    /// all that stood there would be gone with it.
    WholeField wholeField(const TextRequest& request) const;

 private:
    async::Task<void> readInput(TextRequest& request);
    static bool tookMoreThanTheKeys(const TextRequest& request);
    QString chooseRequestText(const TextRequest& request) const;
    static void believeSelection(TextRequest& request);
    static void testForComposition(TextRequest& request);
    async::Task<void> settleText(TextRequest& request);

    InputStateMachine& machine_;
    InputServices services_;
    SettlingLoop settlingLoop_;
};

}  // namespace tavrelon::input
