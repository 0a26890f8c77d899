#include "ui/settings/taught_model.h"

#include <algorithm>
#include <array>

namespace tavrelon::ui {

using persistence::AppSettings;
using persistence::Taught;

namespace {

constexpr std::array<PageText, 5> taughtTexts{{
    {u"learnedBy", u"Learned by %1", u"学习自：%1"},
    {u"unknown", u"It is not known who taught this", u"学习来源未知"},
    {u"setAside", u"Learned with another provider: set aside, and not sent to this one unless you keep it.",
     u"由其他服务提供商学习所得：已搁置，除非您选择保留，否则不会发送给当前提供商。"},
    {u"keep", u"Keep", u"保留"},
    {u"remove", u"Remove", u"移除"},
}};

}  // namespace

TaughtModel::TaughtModel(persistence::StorageManager& storage, std::vector<Taught> what)
    : PageModel(storage, taughtTexts), what_(std::move(what)) {}

bool TaughtModel::isTaught() const {
    return std::ranges::any_of(what_, [this](Taught each) { return persistence::isTaught(settings(), each); });
}

bool TaughtModel::isSetAside() const {
    return std::ranges::any_of(what_, [this](Taught each) { return persistence::isSetAside(settings(), each); });
}

QString TaughtModel::origin() const {
    if (!isTaught())
        return {};
    QStringList sources;
    for (const auto each : what_)
        sources << persistence::sourceOf(settings(), each);
    sources.removeAll(QString());
    sources.removeDuplicates();
    return sources.isEmpty() ? text(u"unknown") : text(u"learnedBy").arg(sources.join(QStringLiteral(", ")));
}

void TaughtModel::keep() {
    store([this](AppSettings& changed) {
        for (const auto each : what_)
            if (persistence::isTaught(changed, each))
                persistence::keepTaught(changed, each);
    });
}

void TaughtModel::remove() {
    const bool onlySetAside = isSetAside();
    store([&](AppSettings& changed) {
        for (const auto each : what_)
            if (!onlySetAside || persistence::isSetAside(changed, each))
                persistence::forgetTaught(changed, each);
    });
}

}  // namespace tavrelon::ui
