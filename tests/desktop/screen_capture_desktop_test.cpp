#include <unistd.h>

#include "desktop/pasteboard_session.h"
#include "desktop/x11/screen/x11_screen_capture.h"
#include "support/test_window.h"

namespace tavrelon::testing {

namespace {

using platform::Image;

constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t blue = 0x0000FF;
constexpr std::uint32_t green = 0x00FF00;

/// A client of its own that paints other clients' windows and covers them.
class Painter {
 public:
    Painter() : connection_(xcb_connect(nullptr, nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;
    ~Painter() { xcb_disconnect(connection_); }

    /// What this colour is on a screen of any depth.
    std::uint32_t on(std::uint32_t colour) {
        const auto part = [colour](int shift) { return static_cast<std::uint16_t>((colour >> shift & 0xFF) * 0x101); };
        const auto map = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->default_colormap;
        const desktop::XPointer<xcb_alloc_color_reply_t> reply(
            xcb_alloc_color_reply(connection_, xcb_alloc_color(connection_, map, part(16), part(8), part(0)), nullptr));
        return reply->pixel;
    }
    void fill(xcb_window_t window, std::uint32_t colour) {
        colour = on(colour);
        xcb_change_window_attributes(connection_, window, XCB_CW_BACK_PIXEL, &colour);
        xcb_clear_area(connection_, 0, window, 0, 0, 0, 0);
        sync();
    }

    /// Paints what nobody paints again.
    void fillOnce(xcb_window_t window, std::uint32_t colour) {
        colour = on(colour);
        const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
        xcb_change_window_attributes(connection_, window, XCB_CW_BACK_PIXMAP, &none);
        const auto context = xcb_generate_id(connection_);
        xcb_create_gc(connection_, context, window, XCB_GC_FOREGROUND, &colour);
        const xcb_rectangle_t all{0, 0, 3000, 3000};
        xcb_poly_fill_rectangle(connection_, window, context, 1, &all);
        sync();
    }

    /// Lays a window of this colour over the whole screen, above all others.
    void coverScreen(std::uint32_t colour) {
        cover_ = xcb_generate_id(connection_);
        const std::uint32_t values[] = {on(colour), 1};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, cover_, root_, 0, 0, 3000, 3000, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(connection_, cover_);
        sync();
    }

    struct Point {
        int x = 0;
        int y = 0;
    };
    Point onScreen(xcb_window_t window) {
        const desktop::XPointer<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
            connection_, xcb_translate_coordinates(connection_, window, root_, 0, 0), nullptr));
        return {reply->dst_x, reply->dst_y};
    }

    /// Puts the pointer at a place of the screen, and makes it a square of this colour over this window.
    void point(xcb_window_t window, Point place, std::uint16_t redPart, std::uint16_t greenPart) {
        const auto pixmap = xcb_generate_id(connection_);
        xcb_create_pixmap(connection_, 1, pixmap, root_, 16, 16);
        const auto context = xcb_generate_id(connection_);
        const std::uint32_t one = 1;
        xcb_create_gc(connection_, context, pixmap, XCB_GC_FOREGROUND, &one);
        const xcb_rectangle_t all{0, 0, 16, 16};
        xcb_poly_fill_rectangle(connection_, pixmap, context, 1, &all);
        const auto cursor = xcb_generate_id(connection_);
        xcb_create_cursor(connection_, cursor, pixmap, pixmap, redPart, greenPart, 0, 0, 0, 0, 8, 8);
        xcb_change_window_attributes(connection_, window, XCB_CW_CURSOR, &cursor);
        xcb_warp_pointer(connection_, XCB_NONE, root_, 0, 0, 0, 0, static_cast<std::int16_t>(place.x),
                         static_cast<std::int16_t>(place.y));
        sync();
    }

    void sync() { std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)); }

 private:
    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t cover_ = XCB_NONE;
};

std::uint32_t pixel(const Image& image, int x, int y) {
    if (x < 0 || y < 0 || x >= image.width || y >= image.height)
        return 0xFFFFFFFF;
    const auto* bytes = reinterpret_cast<const unsigned char*>(image.pixels.constData()) + 4 * (y * image.width + x);
    return static_cast<std::uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]);
}

class ScreenPictures : public PasteboardSession {
 public:
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11ScreenCapture> capture =
        desktop::X11ScreenCapture::create(loop, log, *workspace).value();
    Painter painter;
    TestWindow target{{.processIdentifier = qint64{::getpid()},
                       .machine = thisMachine(),
                       .windowClass = QStringLiteral("Target"),
                       .title = QStringLiteral("Target")}};

    void SetUp() override {
        // A window that opens while the window manager is still starting does not get the focus by itself.
        ASSERT_TRUE(runQtUntil([&] {
            run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"), QString::number(target.window())});
            return runQtUntil([&] { return workspace->frontmostWindowTitle() == QStringLiteral("Target"); },
                              std::chrono::milliseconds(500));
        }));
        moveTo(200, 150);
        painter.fill(target.window(), red);
        painter.point(target.window(), {5, 5}, 0, 0);
    }
    /// Returns when the window is there; what its frame adds is some pixels.
    void moveTo(int x, int y) {
        const auto isThere = [&] {
            const auto place = painter.onScreen(target.window());
            return std::abs(place.x - x) < 40 && std::abs(place.y - y) < 40;
        };
        // The window manager may still be placing it.
        EXPECT_TRUE(runQtUntil([&] {
            run(QStringLiteral("xdotool"), {QStringLiteral("windowmove"), QString::number(target.window()),
                                            QString::number(x), QString::number(y)});
            return runQtUntil(isThere, std::chrono::milliseconds(500));
        }));
    }
    platform::ShareableContent content() { return runTaskOnQt(loop, capture->shareableContent()).value(); }
    Image windowPicture() { return runTaskOnQt(loop, capture->captureWindow(content().windows.front())).value(); }
    Image displayPicture() { return runTaskOnQt(loop, capture->captureDisplay(content().displays.front())).value(); }
};

/// How many pixels have this colour.
std::ptrdiff_t countOf(const Image& image, std::uint32_t colour) {
    std::ptrdiff_t count = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            count += pixel(image, x, y) == colour ? 1 : 0;
    return count;
}

constexpr std::ptrdiff_t targetPixels = 300 * 200;

TEST_F(ScreenPictures, WindowsComeFromFrontToBackAndWhatIsGoneIsAnError) {
    EXPECT_TRUE(capture->preflightAccess());
    const auto fits = [](const auto& image, int width, int height) {
        return image && image->width == width && image->height == height &&
               image->pixels.size() == qsizetype{4} * width * height;
    };
    const auto applications = [this] {
        QStringList found;
        for (const auto& window : content().windows)
            if (window.isOnScreen)
                found << window.bundleIdentifier.value_or(QStringLiteral("?"));
        return found;
    };
    std::optional<TestWindow> second(std::in_place, TestWindowProperties{.processIdentifier = qint64{::getpid()},
                                                                         .machine = thisMachine(),
                                                                         .windowClass = QStringLiteral("Second"),
                                                                         .title = QStringLiteral("Second")});
    const QStringList both{QStringLiteral("Second"), QStringLiteral("Target")};
    EXPECT_TRUE(runQtUntil([&] { return applications() == both; }));
    const auto seen = content();
    for (const auto& window : seen.windows)
        EXPECT_TRUE(fits(runTaskOnQt(loop, capture->captureWindow(window)), window.width, window.height));
    for (const auto& display : seen.displays)
        EXPECT_TRUE(fits(runTaskOnQt(loop, capture->captureDisplay(display)), display.width, display.height));
    EXPECT_FALSE(runTaskOnQt(loop, capture->captureDisplay({.identifier = seen.displays.size()})));
    second.reset();
    EXPECT_TRUE(runQtUntil([&] { return applications() == both.mid(1); }));
    const auto gone = runTaskOnQt(loop, capture->captureWindow(seen.windows.front()));
    ASSERT_FALSE(gone);
    EXPECT_FALSE(gone.error().description.isEmpty());
}

TEST_F(ScreenPictures, AWindowIsShownWithItsFrameAndWithoutWhatCoversIt) {
    EXPECT_EQ(countOf(windowPicture(), red), targetPixels);
    EXPECT_EQ(countOf(displayPicture(), red), targetPixels);

    painter.coverScreen(blue);
    const auto covered = windowPicture();
    EXPECT_EQ(countOf(covered, red), targetPixels);
    EXPECT_EQ(countOf(covered, blue), 0);
    const auto display = displayPicture();
    EXPECT_EQ(countOf(display, red), 0) << "the screen stays as it is";
    EXPECT_GT(countOf(display, blue), display.width * display.height - 32 * 32) << "all but the pointer";
}

TEST_F(ScreenPictures, AnExpectedPictureIsNotLostWhenSomethingCoversTheWindow) {
    painter.fillOnce(target.window(), red);
    auto expectation = capture->expectCapture();
    content();  // behind it on the capturing thread
    painter.coverScreen(blue);
    EXPECT_EQ(countOf(windowPicture(), red), targetPixels);
    EXPECT_EQ(countOf(windowPicture(), blue), 0);

    expectation.reset();
    EXPECT_EQ(countOf(windowPicture(), red), 0) << "nothing keeps what was there";
}

TEST_F(ScreenPictures, PixelsComeThroughMemoryThatIsUsedAgainOnceNobodyHasThePicture) {
    const auto connection = desktop::X11Connection::open().value();
    desktop::ScreenGeometry geometry(connection->get(), connection->root());
    desktop::ScreenPixels pixels(connection->get());
    desktop::WindowPixels windows(connection->get(), connection->root(), geometry, pixels);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const auto frame = geometry.frameOf(target.window(), deadline).value();
    const auto fetch = [&] { return windows.fetch(frame, deadline).value(); };

    const auto kept = fetch().image();
    ASSERT_TRUE(pixels.sharesMemory());
    painter.fill(target.window(), green);
    auto second = std::optional(fetch());
    EXPECT_EQ(countOf(second->image(), green), targetPixels);
    const auto* const place = second->pixels.get();
    second.reset();
    EXPECT_EQ(fetch().pixels.get(), place);
    EXPECT_EQ(countOf(kept, red), targetPixels) << "stays as it was";
}

TEST_F(ScreenPictures, ThePointerIsInThePictureWhereItStands) {
    const auto origin = painter.onScreen(target.window());
    painter.point(target.window(), {origin.x + 50, origin.y + 60}, 0, 0xFFFF);
    const auto display = displayPicture();
    EXPECT_EQ(countOf(display, 0x00FF00), 16 * 16);
    EXPECT_EQ(pixel(display, origin.x + 50, origin.y + 60), 0x00FF00U);
    EXPECT_EQ(pixel(display, origin.x + 42, origin.y + 52), 0x00FF00U);
    EXPECT_EQ(pixel(display, origin.x + 41, origin.y + 52), red);
    EXPECT_EQ(countOf(windowPicture(), 0x00FF00), 16 * 16);

    // At the window's edge a part of it falls outside of the picture of the window.
    painter.point(target.window(), {origin.x + 299, origin.y + 199}, 0, 0xFFFF);
    const auto part = countOf(windowPicture(), 0x00FF00);
    EXPECT_GT(part, 0);
    EXPECT_LE(part, 16 * 16);
}

TEST_F(ScreenPictures, ThePrimaryMonitorComesFirst) {
    const auto xrandr = [](const QStringList& arguments) { return run(QStringLiteral("xrandr"), arguments).exitCode; };
    ASSERT_EQ(xrandr({QStringLiteral("--setmonitor"), QStringLiteral("*right"), QStringLiteral("640/170x800/210+640+0"),
                      QStringLiteral("none")}),
              0);
    moveTo(800, 300);
    painter.fill(target.window(), green);
    const auto origin = painter.onScreen(target.window());
    const auto display = displayPicture();
    EXPECT_EQ(display.width, 640);
    EXPECT_EQ(display.height, 800);
    EXPECT_EQ(pixel(display, origin.x - 640 + 10, origin.y + 10), green);
    EXPECT_EQ(countOf(display, green), targetPixels);
    xrandr({QStringLiteral("--delmonitor"), QStringLiteral("right")});
}

}  // namespace

}  // namespace tavrelon::testing
