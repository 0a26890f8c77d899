#include "hotkeys/hotkey_table.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tavrelon::hotkeys {

using input::InputState;
using keys::HotkeyConfig;
using keys::HotkeySet;
using platform::WantedHotkey;
using Case = InputState::Case;
using Fires = WantedHotkey::Fires;

namespace {

/// The states in which a hotkey is ours.
struct States {
    unsigned bits = 0;

    constexpr States() = default;
    constexpr States(std::initializer_list<Case> cases) {
        for (const auto value : cases)
            bits |= 1U << static_cast<unsigned>(value);
    }
    bool has(const InputState& state) const { return (bits >> static_cast<unsigned>(state.value) & 1U) != 0; }
};

constexpr States always{Case::idle,       Case::listening, Case::listeningVoice, Case::recordingVideo,
                        Case::processing, Case::completed, Case::error};
constexpr States betweenInputs{Case::idle, Case::completed, Case::error};
constexpr States duringInputs{Case::listening, Case::listeningVoice, Case::recordingVideo, Case::processing};

enum class Without { Nothing, MasterSwitch };  ///< what a hotkey works without
enum class Windows { All, ForeignOnly };
enum class CodeZero { KeyA, ModifiersAlone };

struct Row {
    HotkeyAction action;
    HotkeyConfig HotkeySet::* hotkey;
    bool HotkeySet::* enabled;
    States states;
    Without without = Without::Nothing;
    Windows windows = Windows::All;
    CodeZero codeZero = CodeZero::KeyA;
};

constexpr auto rows = std::to_array<Row>({
    {HotkeyAction::toggleAllHotkeys, &HotkeySet::toggleAllHotkeysHotkey, &HotkeySet::toggleAllHotkeysHotkeyEnabled,
     always, Without::MasterSwitch},
    {HotkeyAction::video,
     &HotkeySet::videoHotkey,
     &HotkeySet::videoHotkeyEnabled,
     {Case::idle, Case::recordingVideo, Case::completed, Case::error}},
    {HotkeyAction::toggle, &HotkeySet::toggleHotkey, &HotkeySet::toggleHotkeyEnabled, always},
    {HotkeyAction::floatingInput, &HotkeySet::floatingInputHotkey, &HotkeySet::floatingInputHotkeyEnabled,
     betweenInputs},
    {HotkeyAction::quickAsk, &HotkeySet::quickAskHotkey, &HotkeySet::quickAskHotkeyEnabled, always, Without::Nothing,
     Windows::ForeignOnly},
    {HotkeyAction::cancel, &HotkeySet::cancelHotkey, &HotkeySet::cancelHotkeyEnabled, duringInputs},
    {HotkeyAction::autoReply, &HotkeySet::autoReplyHotkey, &HotkeySet::autoReplyHotkeyEnabled, betweenInputs},
    {HotkeyAction::voice, &HotkeySet::voiceHotkey, &HotkeySet::voiceHotkeyEnabled, always, Without::Nothing,
     Windows::All, CodeZero::ModifiersAlone},
    {HotkeyAction::voiceDictation, &HotkeySet::voiceDictationHotkey, &HotkeySet::voiceDictationHotkeyEnabled, always,
     Without::Nothing, Windows::All, CodeZero::ModifiersAlone},
});

/// Modifiers alone begin a recording when they are let go, since a longer shortcut may begin with them; they end one at
/// once.
std::optional<Fires> firingOfModifiersAlone(const HotkeyConfig& hotkey, const InputState& state) {
    if ((hotkey.modifiers & keys::relevantModifierMask).isEmpty())
        return std::nullopt;
    if (state == Case::listeningVoice)
        return Fires::OnModifiersDown;
    return betweenInputs.has(state) ? std::optional(Fires::OnModifiersReleased) : std::nullopt;
}

std::optional<Fires> firing(const Row& row, const HotkeyConfig& hotkey, const InputState& state) {
    if (row.codeZero == CodeZero::ModifiersAlone && hotkey.keyCode == 0)
        return firingOfModifiersAlone(hotkey, state);
    return row.states.has(state) ? std::optional(Fires::OnPress) : std::nullopt;
}

bool isSwitchedOn(const Row& row, const HotkeySet& settings) {
    return settings.*row.enabled && (settings.hotkeysEnabled || row.without == Without::MasterSwitch);
}

bool haveSameKeys(const WantedHotkey& a, const WantedHotkey& b) {
    return a.fires == b.fires && a.keys.matches(b.keys.keyCode, b.keys.modifiers);
}

}  // namespace

std::vector<DeclaredHotkey> wantedHotkeys(const HotkeySet& settings, const InputState& state, FrontWindow front,
                                          Question question) {
    std::vector<DeclaredHotkey> wanted;
    for (const auto& row : rows) {
        const bool answers =
            question == Question::OnShow && (row.action == HotkeyAction::toggle || row.action == HotkeyAction::cancel);
        if ((!answers && !isSwitchedOn(row, settings)) ||
            (front == FrontWindow::OurOwn && row.windows == Windows::ForeignOnly))
            continue;
        const auto fires = firing(row, settings.*row.hotkey, state);
        if (!fires)
            continue;
        const WantedHotkey hotkey{settings.*row.hotkey, *fires};
        if (std::ranges::none_of(wanted, [&](const auto& earlier) { return haveSameKeys(earlier.hotkey, hotkey); }))
            wanted.push_back({row.action, hotkey});
    }
    return wanted;
}

std::optional<HotkeyAction> actionNamed(QStringView name) {
    static constexpr std::pair<QStringView, HotkeyAction> names[] = {
        {u"text", HotkeyAction::toggle},     {u"prompt", HotkeyAction::floatingInput},
        {u"voice", HotkeyAction::voice},     {u"dictation", HotkeyAction::voiceDictation},
        {u"reply", HotkeyAction::autoReply}, {u"video", HotkeyAction::video},
        {u"cancel", HotkeyAction::cancel},   {u"toggle", HotkeyAction::toggleAllHotkeys},
    };
    const auto* found = std::ranges::find(names, name, [](const auto& entry) { return entry.first; });
    return found == std::end(names) ? std::nullopt : std::optional(found->second);
}

}  // namespace tavrelon::hotkeys
