#include "desktop/wayland/sway/sway_combinations.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace tavrelon::desktop {

using Fires = platform::WantedHotkey::Fires;

namespace {

constexpr int deepestInclude = 16;

struct ModifierName {
    const char* name;
    std::uint32_t mask;
};
/// Locks count for nothing in sway's bindings, and a layout is no modifier.
constexpr ModifierName modifierNames[] = {
    {"shift", 1},  {"control", 4}, {"ctrl", 4},   {"mod1", 8},   {"alt", 8},        {"mod3", 32}, {"mod4", 64},
    {"super", 64}, {"logo", 64},   {"mod5", 128}, {"lock", 0},   {"caps", 0},       {"mod2", 0},  {"num", 0},
    {"group1", 0}, {"group2", 0},  {"group3", 0}, {"group4", 0}, {"mode_switch", 0}};

struct HotkeyModifier {
    keys::Modifiers flag;
    const char* name;
    std::uint32_t mask;
    std::array<xkb_keysym_t, 2> sides;
};
constexpr HotkeyModifier hotkeyModifiers[] = {{keys::shiftFlag, "Shift", 1, {XKB_KEY_Shift_L, XKB_KEY_Shift_R}},
                                              {keys::controlFlag, "Control", 4, {XKB_KEY_Control_L, XKB_KEY_Control_R}},
                                              {keys::optionFlag, "Mod1", 8, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}},
                                              {keys::commandFlag, "Mod4", 64, {XKB_KEY_Super_L, XKB_KEY_Super_R}}};

QStringList wordsOf(const QString& line) {
    return line.split(u' ', Qt::SkipEmptyParts);
}

std::optional<SwayCombination> combinationFrom(const QString& text, bool isByCode) {
    SwayCombination found;
    int keysFound = 0;
    for (const auto& part : text.split(u'+', Qt::SkipEmptyParts)) {
        const auto* modifier = std::ranges::find_if(modifierNames, [&](const ModifierName& each) {
            return part.compare(QLatin1StringView(each.name), Qt::CaseInsensitive) == 0;
        });
        if (modifier != std::end(modifierNames)) {
            found.modifiers |= modifier->mask;
            continue;
        }
        ++keysFound;
        if (isByCode)
            found.code = part.toUInt();
        else
            found.symbol =
                xkb_keysym_to_lower(xkb_keysym_from_name(part.toUtf8().constData(), XKB_KEYSYM_CASE_INSENSITIVE));
    }
    // More keys at once are none that a hotkey could mean, and buttons of a mouse have no symbol.
    const bool isKey = keysFound == 1 && (found.symbol != XKB_KEY_NoSymbol || found.code != 0);
    return isKey ? std::optional(found) : std::nullopt;
}

/// Follows a configuration as sway does, for what it binds.
class ConfigurationReader {
 public:
    explicit ConfigurationReader(const std::function<QStringList(const QString&)>& include) : include_(include) {}

    void read(const QString& text, int depth = 0) {
        QStringList blocks;
        auto joined = text;
        joined.replace(QStringLiteral("\\\n"), QStringLiteral(" ")).replace(u'\t', u' ');
        for (const auto& raw : joined.split(u'\n')) {
            const auto line = raw.trimmed();
            if (line.isEmpty() || line.startsWith(u'#'))
                continue;
            if (line == u"}") {
                if (!blocks.isEmpty())
                    blocks.removeLast();
            } else if (line.endsWith(u'{')) {
                blocks.append(line.chopped(1).trimmed());
            } else {
                take(wordsOf(blocks.join(u' ') + u' ' + line), depth);
            }
        }
    }

    std::vector<SwayCombination> bound;

 private:
    void take(QStringList words, int depth) {
        const auto command = words.takeFirst().toLower();
        if (command == u"set" && words.size() > 1) {
            const auto name = words.takeFirst();
            variables_[name] = expanded(words.join(u' '));
        } else if (command == u"include" && depth < deepestInclude) {
            for (const auto& text : include_(expanded(words.join(u' '))))
                read(text, depth + 1);
        } else if (command == u"bindsym" || command == u"bindcode" || command == u"unbindsym" ||
                   command == u"unbindcode") {
            bind(wordsOf(expanded(words.join(u' '))), command);
        }
    }

    void bind(const QStringList& words, const QString& command) {
        const auto keys = std::ranges::find_if(words, [](const QString& word) { return !word.startsWith(u"--"); });
        const auto combination = keys == words.end()
                                     ? std::nullopt
                                     : combinationFrom(QString(*keys).remove(u'"'), command.endsWith(u"code"));
        if (!combination)
            return;
        std::erase(bound, *combination);
        if (!command.startsWith(u"un"))
            bound.push_back(*combination);
    }

    /// The longest name that fits is meant.
    QString expanded(QString text) const {
        for (qsizetype at = text.indexOf(u'$'); at >= 0; at = text.indexOf(u'$', at + 1)) {
            const std::pair<const QString, QString>* best = nullptr;
            for (const auto& variable : variables_)
                if (QStringView(text).sliced(at).startsWith(variable.first) &&
                    (!best || variable.first.size() > best->first.size()))
                    best = &variable;
            if (best)
                text.replace(at, best->first.size(), best->second);
        }
        return text;
    }

    const std::function<QStringList(const QString&)>& include_;
    std::map<QString, QString> variables_;
};

QString symbolName(xkb_keysym_t symbol) {
    std::array<char, 64> name{};
    return xkb_keysym_get_name(symbol, name.data(), name.size()) > 0 ? QString::fromUtf8(name.data()) : QString();
}

/// "Mod1+Shift+", and its mask.
std::pair<QString, std::uint32_t> prefixOf(keys::Modifiers flags) {
    std::pair<QString, std::uint32_t> prefix;
    for (const auto& modifier : hotkeyModifiers)
        if (flags.contains(modifier.flag)) {
            prefix.first += QLatin1StringView(modifier.name) + u'+';
            prefix.second |= modifier.mask;
        }
    return prefix;
}

/// The keys of a hotkey without regard to layouts; the code is the place at which the symbol lies on a US keyboard.
std::vector<std::pair<SwayCombination, keys::Modifiers>> keysOf(const platform::WantedHotkey& hotkey) {
    const auto flags = hotkey.keys.modifiers & keys::relevantModifierMask;
    if (hotkey.fires == Fires::OnPress) {
        const auto label = labelOf(hotkey.keys.keyCode);
        if (!label)
            return {};
        return {{{prefixOf(flags).second, label->symbol, label->place}, flags}};
    }
    std::vector<std::pair<SwayCombination, keys::Modifiers>> found;
    for (const auto& last : hotkeyModifiers) {
        const keys::Modifiers held{flags.raw & ~last.flag.raw};
        if (flags.contains(last.flag))
            for (const auto side : last.sides)
                found.push_back({{prefixOf(held).second, side, 0}, held});
    }
    return found;
}

}  // namespace

std::vector<SwayCombination> combinationsBoundIn(const QString& configuration,
                                                 const std::function<QStringList(const QString&)>& include) {
    ConfigurationReader reader(include);
    reader.read(configuration);
    return std::move(reader.bound);
}

std::vector<SwayBinding> swayBindingsOf(const platform::WantedHotkey& hotkey, int layouts) {
    std::vector<SwayBinding> bindings;
    for (const auto& [combination, held] : keysOf(hotkey))
        for (int layout = 1; layout <= layouts; ++layout) {
            const auto keys = QStringLiteral("Group%1+").arg(layout) + prefixOf(held).first;
            const auto symbol = keys + symbolName(combination.symbol);
            const auto flags = hotkey.fires == Fires::OnModifiersReleased ? QStringLiteral("--no-repeat --release ")
                                                                          : QStringLiteral("--no-repeat ");
            SwayBinding binding{combination, {}};
            if (hotkey.fires == Fires::OnPress && held.isEmpty()) {
                // A key that people write with counts only where the layout types its symbol.
                binding.tries = {QStringLiteral("bindsym ") + flags + symbol};
            } else {
                binding.tries = {QStringLiteral("bindsym --to-code ") + flags + symbol};
                if (combination.code != 0)
                    binding.tries.append(QStringLiteral("bindcode ") + flags + keys +
                                         QString::number(combination.code));
            }
            bindings.push_back(std::move(binding));
        }
    return bindings;
}

QString unbinding(const QString& binding) {
    return QStringLiteral("un") + binding;
}

bool isAmong(const std::vector<SwayCombination>& bound, const platform::WantedHotkey& hotkey) {
    const auto keys = keysOf(hotkey);
    return std::ranges::any_of(keys, [&](const auto& own) {
        return std::ranges::any_of(bound, [&](const SwayCombination& other) {
            return other.modifiers == own.first.modifiers &&
                   (other.symbol != 0 ? other.symbol == own.first.symbol : other.code == own.first.code);
        });
    });
}

}  // namespace tavrelon::desktop
