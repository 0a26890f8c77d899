#include "scenes/scene_router.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/qt_gtest.h"

namespace tavrelon::scenes {

namespace {

SceneConfig named(const QString& name, qint64 priority = 0) {
    return {.id = QUuid::createUuid(), .name = name, .priority = priority};
}

capture::CapturedContext inApplication(const char* bundle, const QString& input = {}) {
    capture::CapturedContext context;
    context.inputBuffer = input;
    context.appBundleID = QString::fromLatin1(bundle);
    return context;
}

}  // namespace

class SceneRouterTest : public ::testing::Test {
 public:
    SceneCandidate best(const capture::CapturedContext& context) const { return router.route(context, 3).front(); }

    QStringList names(const capture::CapturedContext& context, qsizetype topK = 9) const {
        QStringList found;
        for (const auto& candidate : router.route(context, topK))
            found << candidate.sceneName;
        return found;
    }

    SceneRouter router;
};

TEST_F(SceneRouterTest, AddsUpApplicationTitleAndText) {
    router.updateScenes(defaultScenes());
    auto mail = inApplication("com.apple.mail", QStringLiteral("Dear Bob"));
    mail.appName = QStringLiteral("Mail");
    mail.windowTitle = QStringLiteral("回复: re: lunch");
    const auto found = best(mail);
    EXPECT_EQ(found.score, 0.4F + 0.3F + 0.2F);
    EXPECT_EQ(found.matchReason, QStringLiteral("App: Mail, 窗口: Re:, 内容匹配"));  // one keyword only, the first
    EXPECT_EQ(found.sceneID, text::uuidText(found.config.id));
    EXPECT_EQ(names(mail), QStringList{QStringLiteral("邮件回复")});

    const auto code = best(inApplication("com.microsoft.VSCode", QStringLiteral("hello")));
    EXPECT_EQ(code.score, 0.4F);
    EXPECT_EQ(code.matchReason, QStringLiteral("App: com.microsoft.VSCode"));
    // Named after a chat program, but by no word that the chat signal goes by.
    EXPECT_EQ(best(inApplication("com.tinyspeck.slackmacgap", QStringLiteral("hi"))).score, 0.4F);
}

TEST_F(SceneRouterTest, FallsBackToTheDefaultScene) {
    const auto check = [this](const capture::CapturedContext& context) {
        const auto candidates = router.route(context, 3);
        ASSERT_EQ(candidates.size(), 1U);
        EXPECT_EQ(candidates[0].score, 0.5F);
        EXPECT_EQ(candidates[0].matchReason, QStringLiteral("默认场景"));
        EXPECT_EQ(candidates[0].config, router.defaultScene());
        EXPECT_EQ(candidates[0].sceneName, QStringLiteral("通用场景"));
    };
    check({});
    router.updateScenes(defaultScenes());
    check({});  // every scene is bound to applications
    check(inApplication("com.apple.MAIL", QStringLiteral("Dear")));
    EXPECT_TRUE(router.route({}, 0).empty());
}

TEST_F(SceneRouterTest, ABoundSceneNeedsAnotherSignWhenTheApplicationIsUnknown) {
    router.updateScenes(defaultScenes());
    capture::CapturedContext context;
    context.windowTitle = QStringLiteral("RE: lunch");
    EXPECT_EQ(names(context), QStringList{QStringLiteral("邮件回复")});
    EXPECT_EQ(best(context).score, 0.3F);

    auto scene = named(QStringLiteral("x"));
    scene.windowTitleKeywords = QStringList{QString()};  // an empty keyword is no sign
    router.updateScenes({scene});
    EXPECT_EQ(best(context).score, 0.1F);
}

TEST_F(SceneRouterTest, PriorityOnlyBreaksTies) {
    auto disabled = named(QStringLiteral("off"), 99);
    disabled.isEnabled = false;
    auto bound = named(QStringLiteral("bound"), -5);
    bound.appBundleIDs = {QStringLiteral("app")};
    router.updateScenes({bound, named(QStringLiteral("a"), 10), named(QStringLiteral("b"), 20), disabled,
                         named(QStringLiteral("c"), 10)});
    EXPECT_EQ(names(inApplication("app")).join(u' '), QStringLiteral("bound b a c"));
    EXPECT_EQ(names(inApplication("app"), 2).join(u' '), QStringLiteral("bound b"));
    EXPECT_EQ(router.route({}, 2).back().matchReason, QStringLiteral("优先级: 10"));
    EXPECT_NE(best({}).id, best({}).id);
}

}  // namespace tavrelon::scenes
