#include "app/undo_offers.h"

#include <algorithm>

namespace tavrelon::app {

void UndoOffers::offer(Undoable what, std::move_only_function<void()> undo) {
    const auto place = offers_.insert(offers_.end(), Offer{what, std::move(undo), {}});
    place->end = mainLoop_.after(timeToUndo, [this, place] {
        offers_.erase(place);
        notice_.announce();
    });
    notice_.announce();
}

void UndoOffers::undo(Undoable what) {
    std::list<Offer> taken;
    for (auto place = offers_.begin(); place != offers_.end();) {
        const auto offer = place++;
        if (offer->what == what)
            taken.splice(taken.begin(), offers_, offer);
    }
    for (auto& offer : taken) {
        offer.end.reset();
        offer.undo();
    }
    notice_.announce();
}

std::vector<Undoable> UndoOffers::standing() const {
    std::vector<Undoable> kinds;
    for (const auto& offer : offers_) {
        std::erase(kinds, offer.what);
        kinds.push_back(offer.what);
    }
    return kinds;
}

}  // namespace tavrelon::app
