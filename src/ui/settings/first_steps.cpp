#include "ui/settings/first_steps.h"

#include <array>

#include "keys/key_names.h"

namespace tavrelon::ui {

namespace {

constexpr std::array<PageText, 8> firstTexts{{
    {u"title", u"Your first answer", u"获得第一个回答"},
    {u"how", u"In any application press %1, type what you want, and press %1 again. The answer takes its place.",
     u"在任意应用中按 %1，输入您的请求，再按一次 %1，回答会替换它。"},
    {u"done", u"That was it. It works like this in every application.", u"成功了。在任何应用中都是这样使用。"},
    {u"choose", u"First choose who answers: on the page Providers, or start a model server on this machine.",
     u"请先选择由谁回答：在“服务提供商”页面选择，或在本机启动模型服务器。"},
    {u"take", u"First choose who answers: one of these, or another on the page Providers.",
     u"请先选择由谁回答：选择下面的一个，或在“服务提供商”页面选择其他的。"},
    {u"tryName", u"Try it here", u"在此试用"},
    {u"tryHere", u"Try it here: press %1, type, press %1 again", u"在此试用：按 %1，输入，再按 %1"},
    {u"look", u"Look again", u"重新查找"},
}};

}  // namespace

FirstSteps::FirstSteps(FoundServers::Services services)
    : PageModel(services.storage, firstTexts), found_(services), isWanted_(!settings().hasAnswered) {}

QString FirstSteps::keyName() const {
    const auto& hotkey = settings().toggleHotkey;
    return keys::plainName(hotkey.keyCode, hotkey.modifiers, keys::ZeroKey::A);
}

}  // namespace tavrelon::ui
