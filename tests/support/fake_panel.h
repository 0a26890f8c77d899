#pragma once

#include <vector>

#include "platform/panel.h"
#include "support/fake_workspace.h"

namespace tavrelon::testing {

/// A panel that is only thought of.
class FakePanel : public platform::Panel {
 public:
    FakePanel(const platform::PanelDescription& description, FakeWorkspace& workspace, double scale)
        : kind(description.kind),
          view(description.view),
          contentSize(description.contentSize),
          model(description.model),
          workspace_(workspace),
          scale_(scale) {}

    platform::PanelKind kind;
    QString view;
    QSizeF contentSize;
    QObject* model;
    QPointF origin{-1, -1};
    bool visible = false;
    double alpha = 1;  ///< the one that the last fade leads to
    std::chrono::milliseconds fade{0};
    int placings = 0;

    void setContentSize(QSizeF size) override { contentSize = size; }
    QSizeF frameSize() const override { return contentSize * scale_; }
    void setFrameOrigin(QPointF point) override {
        origin = point;
        ++placings;
    }
    bool isVisible() const override { return visible; }
    void orderFront() override { visible = true; }
    void orderOut() override {
        if (std::exchange(visible, false) && workspace_.isOwnWindowInFront())
            workspace_.focusNothing();
    }
    void makeKeyAndOrderFront() override {
        visible = true;
        workspace_.focusOwnWindow();
    }
    void setAlpha(double value, std::chrono::milliseconds duration) override {
        alpha = value;
        fade = duration;
    }

 private:
    FakeWorkspace& workspace_;
    double scale_;
};

/// Makes fake panels and keeps them in sight of the test.
class FakePanels : public platform::Panels {
 public:
    explicit FakePanels(FakeWorkspace& workspace) : workspace_(workspace) {}

    std::vector<FakePanel*> made;  ///< owned by those who asked for them
    double scale = 1;

    std::unique_ptr<platform::Panel> create(const platform::PanelDescription& description) override {
        auto panel = std::make_unique<FakePanel>(description, workspace_, scale);
        made.push_back(panel.get());
        return panel;
    }

 private:
    FakeWorkspace& workspace_;
};

}  // namespace tavrelon::testing
