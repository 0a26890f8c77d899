#include "contract/pasteboard_contract.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_pasteboard.h"
#include "support/clipboard_owner.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

namespace {

class X11World : public PasteboardWorld {
 public:
    platform::Pasteboard& pasteboard() override { return *pasteboard_; }
    std::expected<Items, platform::PasteboardError> items() override {
        return runTaskOnQt(loop_, pasteboard_->items());
    }
    std::optional<QString> string() override { return runTaskOnQt(loop_, pasteboard_->string()); }
    void copyElsewhere(const QString& text) override {
        replaceOwner({{.target = QStringLiteral("UTF8_STRING"), .bytes = text.toUtf8()}}, {});
    }
    void copyElsewhere(const platform::PasteboardItem& item, Owner owner) override {
        std::vector<ClipboardData> data;
        for (const auto& [type, bytes] : item.dataByType)
            data.push_back({.target = type, .bytes = bytes});
        ClipboardManners manners;
        if (owner == Owner::Hangs)
            manners.answers = ClipboardManners::Answers::Never;
        replaceOwner(std::move(data), std::move(manners));
    }

 private:
    void replaceOwner(std::vector<ClipboardData> data, ClipboardManners manners) {
        // The new one takes the clipboard before the old one goes, as between two applications.
        owner_ = std::make_unique<ClipboardOwner>(std::move(data), std::move(manners));
    }

    desktop::QtMainLoop loop_;
    RecordingLog log_;
    std::unique_ptr<desktop::X11Pasteboard> pasteboard_ = desktop::X11Pasteboard::create(loop_, log_).value();
    std::unique_ptr<ClipboardOwner> owner_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Real, PasteboardContract,
                         ::testing::Values(PasteboardWorldFactory([] { return std::make_unique<X11World>(); })),
                         [](const auto&) { return "X11"; });

}  // namespace tavrelon::testing
