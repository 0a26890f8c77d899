// The view of the history over its model, drawn off screen: what is heavy or broken must not stop the window.
#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickView>

#include "desktop/qt/qt_view_engine.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"
#include "ui/history_desk.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;

class HistoryViewTest : public ::testing::Test, public tavrelon::testing::HistoryDesk {
 public:
    std::unique_ptr<QQmlEngine> engine = desktop::makeViewEngine(desktop.log);
    QQuickView view{engine.get(), nullptr};

    ~HistoryViewTest() override { desktop::giveTexturesBack(view); }

    void add(const QString& output, const QString& picture = {}) {
        history.addEntry({.id = QUuid::createUuid(),
                          .appName = u"Editor"_s,
                          .inputText = u"go"_s,
                          .outputText = output,
                          .outputImagePath = picture});
    }
    void open() {
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(712, 540);
        view.setInitialProperties({{u"model"_s, QVariant::fromValue<QObject*>(&page)}});
        view.setSource(desktop::viewUrl(u"history/HistoryView"_s));
        view.show();
        page.selectApp(u"Editor"_s);
    }
    QQuickItem* hugePicture() const {
        for (auto* picture : shown("QQuickImage"))
            if (picture->property("source").toString().endsWith(pictureName(1)))
                return picture;
        return nullptr;
    }
    QList<QQuickItem*> shown(const char* type) const {
        QList<QQuickItem*> found;
        collect(view.rootObject(), type, found);
        return found;
    }

 private:
    static void collect(QQuickItem* item, const char* type, QList<QQuickItem*>& found) {
        if (!item->isVisible())
            return;
        if (item->inherits(type) && !item->inherits("QQuickTextInput"))
            found << item;
        for (auto* child : item->childItems())
            collect(child, type, found);
    }
};

TEST_F(HistoryViewTest, HugePicturesAreDrawnSmallAndBrokenOnesAreTheirNotices) {
    const QImage huge(8000, 4000, QImage::Format_RGB32);  // 32 megapixels
    ASSERT_TRUE(huge.save(folder.filePath(pictureName(1)), "PNG"));
    ASSERT_TRUE(QImage(400, 300, QImage::Format_RGB32).save(folder.filePath(u"cut.jpg"_s), "PNG"));
    ASSERT_TRUE(QFile::resize(folder.filePath(u"cut.jpg"_s), 60));
    add(u"图片已复制到剪贴板"_s, u"cut.jpg"_s);
    add({}, pictureName(1));
    open();
    const auto noticeIsShown = [this] {
        return std::ranges::any_of(shown("QQuickTextEdit"),
                                   [](QQuickItem* text) { return text->property("text") == u"图片已复制到剪贴板"_s; });
    };
    int turnsWhileLoading = 0;
    EXPECT_TRUE(tavrelon::testing::runQtUntil([&] {
        const auto* picture = hugePicture();
        constexpr int loading = 2;
        turnsWhileLoading += picture && picture->property("status").toInt() == loading ? 1 : 0;
        constexpr int ready = 1;
        return picture && picture->property("status").toInt() == ready && noticeIsShown();
    }));
    EXPECT_GT(turnsWhileLoading, 5) << "the window lives on meanwhile";
    EXPECT_EQ(hugePicture()->property("implicitWidth").toInt(), 360) << "it is decoded to the size shown";
}

TEST_F(HistoryViewTest, OfAMegabyteOnlyWhatIsInSightIsLaidOut) {
    add(u"A line of a very long report.\n"_s.repeated(40'000));
    add(u"كلمة "_s.repeated(200'000));
    open();
    ASSERT_TRUE(tavrelon::testing::runQtUntil([this] { return shown("QQuickTextEdit").size() > 1; }));
    qsizetype characters = 0;
    for (auto* text : shown("QQuickTextEdit"))
        characters += text->property("length").toInt();
    EXPECT_GT(characters, 1000);
    EXPECT_LT(characters, 50'000);
    EXPECT_EQ(desktop.log.lines(), QStringList()) << "no complaint of the view";
}

}  // namespace tavrelon::ui

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
