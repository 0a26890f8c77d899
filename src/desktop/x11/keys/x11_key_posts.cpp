#include "desktop/x11/keys/x11_key_posts.h"

#include <algorithm>

namespace tavrelon::desktop {

void PostedKeys::expect(KeyCode code, KeyAction action, async::Instant now) {
    const std::lock_guard lock(mutex_);
    forgetOld(now);
    for (auto& posts : posts_)
        posts.push_back({code, action, now});
}

bool PostedKeys::take(Stream stream, KeyCode code, KeyAction action, async::Instant now) {
    const std::lock_guard lock(mutex_);
    forgetOld(now);
    auto& posts = posts_.at(static_cast<std::size_t>(stream));
    const auto found =
        std::ranges::find_if(posts, [&](const Post& post) { return post.code == code && post.action == action; });
    if (found == posts.end())
        return false;
    posts.erase(posts.begin(), std::next(found));
    return true;
}

void PostedKeys::forgetOld(async::Instant now) {
    for (auto& posts : posts_)
        while (!posts.empty() && now - posts.front().at > lifetime)
            posts.pop_front();
}

}  // namespace tavrelon::desktop
