#include "desktop/wayland/sway/sway_tree.h"

namespace tavrelon::desktop {

namespace {

using text::find;
using text::Json;

int number(const Json& object, const char* key) {
    const auto* value = find(object, key);
    return value ? static_cast<int>(text::integerFrom(*value)) : 0;
}

QString textUnder(const Json& object, const char* key) {
    return text::optionalString(object, key).value_or(QString());
}

bool flag(const Json& object, const char* key) {
    const auto* value = find(object, key);
    return value && text::boolFrom(*value);
}

platform::WindowPlace placeOf(const Json& node) {
    const auto* outer = find(node, "rect");
    const auto* content = find(node, "window_rect");
    if (!outer || !content)
        return {};
    return {.x = number(*outer, "x") + number(*content, "x"),
            .y = number(*outer, "y") + number(*content, "y"),
            .width = number(*content, "width"),
            .height = number(*content, "height"),
            .shadow = {},
            .countsFromItself = find(node, "window_properties") == nullptr};
}

SwayWindow windowOf(const Json& node, qint64 process) {
    SwayWindow window{.identifier = static_cast<quint64>(text::integerFrom(text::required(node, "id"))),
                      .processIdentifier = process,
                      .applicationId = {},
                      .windowClass = {},
                      .windowInstance = {},
                      .title = std::nullopt,
                      .place = placeOf(node),
                      .isFocused = flag(node, "focused"),
                      .isVisible = flag(node, "visible")};
    if (const auto* id = find(node, "app_id"))
        window.applicationId = text::stringFrom(*id);
    if (const auto* name = find(node, "name"))
        window.title = text::stringFrom(*name);
    if (const auto* properties = find(node, "window_properties")) {
        window.windowClass = textUnder(*properties, "class");
        window.windowInstance = textUnder(*properties, "instance");
    }
    return window;
}

void collect(const Json& node, std::vector<SwayWindow>& found) {
    // Containers and workspaces have no process.
    if (const auto* process = find(node, "pid"))
        found.push_back(windowOf(node, text::integerFrom(*process)));
    for (const auto* children : {"nodes", "floating_nodes"})
        if (const auto* list = find(node, children))
            for (const auto& child : text::arrayFrom(*list))
                collect(child, found);
}

}  // namespace

std::vector<SwayOutput> outputsOf(const text::Json& answer) {
    std::vector<SwayOutput> found;
    for (const auto& output : text::arrayFrom(answer)) {
        const auto* area = find(output, "rect");
        if (!area || !flag(output, "active"))
            continue;
        const auto* scale = find(output, "scale");
        found.push_back(
            {.name = textUnder(output, "name"),
             .area = {number(*area, "x"), number(*area, "y"), number(*area, "width"), number(*area, "height")},
             .scale = scale ? text::doubleFrom(*scale) : 1,
             .isFocused = flag(output, "focused")});
    }
    return found;
}

std::vector<SwayWindow> windowsOf(const text::Json& tree) {
    std::vector<SwayWindow> found;
    collect(tree, found);
    return found;
}

}  // namespace tavrelon::desktop
