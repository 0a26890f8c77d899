#include "desktop/x11/keys/x11_key_posts.h"

#include <algorithm>

namespace tavrelon::desktop {

void PostedKeys::expect(KeyCode code, KeyAction action, async::Instant now) {
    const std::lock_guard lock(mutex_);
    forgetOld(now);
    posts_.push_back({code, action, now});
}

bool PostedKeys::take(KeyCode code, KeyAction action, async::Instant now) {
    const std::lock_guard lock(mutex_);
    forgetOld(now);
    const auto found =
        std::ranges::find_if(posts_, [&](const Post& post) { return post.code == code && post.action == action; });
    if (found == posts_.end())
        return false;
    posts_.erase(posts_.begin(), std::next(found));
    return true;
}

void PostedKeys::forgetOld(async::Instant now) {
    while (!posts_.empty() && now - posts_.front().at > lifetime)
        posts_.pop_front();
}

}  // namespace tavrelon::desktop
