#include <gtest/gtest.h>

#include "desktop/wayland/clipboard/clipboard_types.h"
#include "desktop/wayland/sway/sway_combinations.h"
#include "desktop/wayland/sway/sway_ipc.h"
#include "desktop/wayland/sway/sway_tree.h"

namespace tavrelon::desktop {
namespace {

using platform::WantedHotkey;

std::vector<SwayCombination> boundBy(const QString& configuration) {
    return combinationsBoundIn(configuration, [](const QString& pattern) {
        return pattern == u"keys/*" ? QStringList{QStringLiteral("bindsym $modifier+Escape kill")} : QStringList();
    });
}

WantedHotkey press(keys::VirtualKey key, keys::Modifiers modifiers) {
    return {{key, modifiers}, WantedHotkey::Fires::OnPress};
}

constexpr auto toggle = keys::defaults::toggleHotkey;

TEST(SwayMessages, AreWholeInWhateverPiecesTheyCome) {
    const auto sent = encodeSwayMessage(SwayMessage::GetTree, "{}") + encodeSwayMessage(SwayMessage::BindingEvent, "");
    SwayMessageReader reader;
    QList<QByteArray> documents;
    for (const char byte : sent) {
        reader.add(QByteArray(1, byte));
        const auto next = reader.next();
        ASSERT_TRUE(next);
        if (*next)
            documents.append((*next)->document);
    }
    EXPECT_EQ(documents, (QList<QByteArray>{"{}", ""}));
}

TEST(SwayMessages, OthersBytesAreAnErrorAndNoLength) {
    SwayMessageReader stranger, tooLong;
    stranger.add("HTTP/1.1 200");
    EXPECT_FALSE(stranger.next());
    tooLong.add(QByteArray("i3-ipc") + QByteArray("\xff\xff\xff\x7f\x04\0\0\0", 8));
    EXPECT_FALSE(tooLong.next());
}

TEST(SwayCombinations, VariablesBlocksAndIncludedFilesAreFollowed) {
    const auto bound =
        boundBy(QStringLiteral("set $mod Alt\n"
                               "set $modifier Mod4\n"
                               "bindsym {\n\t--locked $modifier+shift+mod1+L \\\n exec x\n}\n"
                               "bindcode $mod+65 nop\n"
                               "include keys/*\n"));
    EXPECT_TRUE(isAmong(bound, press(toggle.keyCode, toggle.modifiers)));
    EXPECT_TRUE(isAmong(bound, press(keys::keySpace, keys::optionFlag))) << "by its code";
    EXPECT_TRUE(isAmong(bound, press(keys::keyEscape, keys::commandFlag))) << "the longer name is meant";
    EXPECT_FALSE(isAmong(bound, press(keys::keyEscape, keys::noModifiers)));
}

TEST(SwayCombinations, WhatIsNotInForceIsNotTaken) {
    const auto bound =
        boundBy(QStringLiteral("mode \"x\" {\n bindsym Escape mode default\n}\n"
                               "bindsym Mod4+grave nop\nunbindsym Mod4+grave\n"
                               "# bindsym Mod4+a nop\nbindsym button2 kill\nbindsym a+b nop\n"));
    EXPECT_EQ(bound, std::vector<SwayCombination>());
}

TEST(SwayCombinations, ModifiersAloneAreTakenByEitherOfTheirKeys) {
    const WantedHotkey voice{keys::defaults::voiceHotkey, WantedHotkey::Fires::OnModifiersReleased};
    EXPECT_TRUE(isAmong(boundBy(QStringLiteral("bindsym --release Mod1+Control_R nop")), voice));
    EXPECT_FALSE(isAmong(boundBy(QStringLiteral("bindsym Control+Alt+t nop")), voice));
}

TEST(SwayTree, APlaceIsThatOfTheContentAndAnX11WindowKnowsIt) {
    const auto windows = windowsOf(text::parseJson(R"({"id":1,"pid":null,"nodes":[
        {"id":7,"pid":42,"app_id":"foot","name":null,"focused":true,"visible":true,
         "rect":{"x":100,"y":40,"width":600,"height":400},"window_rect":{"x":2,"y":3,"width":596,"height":395},
         "nodes":[],"floating_nodes":[]}],
        "floating_nodes":[{"id":8,"pid":43,"app_id":null,"name":"t","focused":false,"visible":true,
         "window_properties":{"class":"XTerm","instance":"xterm"},"nodes":[],"floating_nodes":[]}]})"));
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].place,
              (platform::WindowPlace{
                  .x = 102, .y = 43, .width = 596, .height = 395, .shadow = {}, .countsFromItself = true}));
    EXPECT_EQ(windows[1].name(), QStringLiteral("XTerm"));
    EXPECT_FALSE(windows[1].place.countsFromItself);
}

TEST(SwayTree, ADisplayThatIsOffIsNone) {
    const auto outputs = outputsOf(text::parseJson(R"([{"name":"DP-1","active":false,"rect":{"x":0,"y":0}},
        {"name":"eDP-1","active":true,"focused":true,"scale":1.5,"rect":{"x":9,"y":0,"width":1280,"height":800}}])"));
    EXPECT_EQ(outputs,
              (std::vector<SwayOutput>{
                  {.name = QStringLiteral("eDP-1"), .area = {9, 0, 1280, 800}, .scale = 1.5, .isFocused = true}}));
}

TEST(ClipboardTypes, ATextIsOfferedUnderEveryNameAndReadByItsBest) {
    const auto item =
        withTextTypes({.dataByType = {{QStringLiteral("image/png"), "p"}, {QStringLiteral("STRING"), "\xe9"}}});
    QStringList names;
    for (const auto& [name, bytes] : item.dataByType)
        names.append(name);
    const auto best = textTypeAmong(names);
    ASSERT_EQ(best, QStringLiteral("text/plain;charset=utf-8"));
    EXPECT_EQ(decodeClipboardText(*best, item.dataByType[2].second), QStringLiteral("é"));
    EXPECT_EQ(decodeClipboardText(QStringLiteral("text/plain"), "\xe9"), QStringLiteral("é")) << "of an old owner";
}

}  // namespace
}  // namespace tavrelon::desktop
