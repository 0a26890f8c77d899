#include "support/clipboard_manager.h"

#include <QStringList>

#include "support/clipboard_requestor.h"

namespace tavrelon::testing {

ClipboardManager::ClipboardManager(Manners manners) : manners_(manners) {
    const auto selection = peer_.atom(QStringLiteral("CLIPBOARD_MANAGER"));
    xcb_set_selection_owner(peer_.xcb(), peer_.window(), selection, XCB_CURRENT_TIME);
    // The answer to a later question says that the server has seen the change.
    std::free(xcb_get_selection_owner_reply(peer_.xcb(), xcb_get_selection_owner(peer_.xcb(), selection), nullptr));
    thread_ = std::thread([this] { run(); });
}

std::map<QString, QByteArray> ClipboardManager::stop() {
    stop_ = true;
    if (thread_.joinable())
        thread_.join();
    peer_.disconnect();
    return saved_;
}

ClipboardManager::~ClipboardManager() {
    stop();
}

void ClipboardManager::run() {
    while (!stop_) {
        const auto event = peer_.nextEvent(std::chrono::milliseconds(20));
        if (!event || (event->response_type & 0x7f) != XCB_SELECTION_REQUEST || manners_ == Manners::NeverAnswers)
            continue;
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
        save();
        peer_.put(request.requestor, request.property, QStringLiteral("NULL"), 32, {});
        peer_.notify(request, request.property);
    }
}

void ClipboardManager::save() {
    ClipboardRequestor requestor;
    for (const auto& target : requestor.targets()) {
        if (target == QStringLiteral("MULTIPLE") || target == QStringLiteral("SAVE_TARGETS"))
            continue;
        if (const auto data = requestor.fetch(target))
            saved_[target] = data->bytes;
    }
}

}  // namespace tavrelon::testing
