#pragma once

#include <functional>
#include <list>
#include <vector>

#include "async/main_loop.h"
#include "persistence/change_notice.h"

namespace tavrelon::app {

/// What the user can take back for a while.
enum class Undoable : std::uint8_t { HistoryClearing, HotkeyReset };

/// Takes back what was done by one press, for ten seconds each, whatever window is open by then. What was done is done
/// on disk already: a program that ends in between leaves it so. Main thread.
class UndoOffers {
 public:
    static constexpr std::chrono::seconds timeToUndo{10};

    /// `mainLoop` outlives this object.
    explicit UndoOffers(async::MainLoop& mainLoop) : mainLoop_(mainLoop) {}
    UndoOffers(const UndoOffers&) = delete;
    UndoOffers& operator=(const UndoOffers&) = delete;

    /// `undo` and all that it owns is dropped after ten seconds. Another offer of the same kind has its own time.
    void offer(Undoable what, std::move_only_function<void()> undo);

    /// Takes back all of this kind that is still on offer, the last first.
    void undo(Undoable what);

    /// What is on offer, each kind once, the one that was done last at the end.
    std::vector<Undoable> standing() const;

    /// Calls `handler` after an offer came or went, until the subscription is dropped.
    template <typename Handler>
    [[nodiscard]] persistence::ChangeSubscription onChange(Handler handler) const {
        return notice_.subscribe(std::move(handler));
    }

 private:
    struct Offer {
        Undoable what;
        std::move_only_function<void()> undo;
        async::Timer end;
    };

    async::MainLoop& mainLoop_;
    std::list<Offer> offers_;  ///< the last at the end
    persistence::ChangeNotice notice_;
};

}  // namespace tavrelon::app
