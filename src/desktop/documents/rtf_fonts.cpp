#include "desktop/documents/rtf_fonts.h"

#include <algorithm>
#include <array>

namespace tavrelon::desktop {

namespace {

struct FontCharset {
    int charset;
    int codePage;
};
constexpr std::array fontCharsets{
    FontCharset{0, 1252},   FontCharset{2, 1252},   FontCharset{77, 10000}, FontCharset{128, 932},
    FontCharset{129, 949},  FontCharset{130, 1361}, FontCharset{134, 936},  FontCharset{136, 950},
    FontCharset{161, 1253}, FontCharset{162, 1254}, FontCharset{163, 1258}, FontCharset{177, 1255},
    FontCharset{178, 1256}, FontCharset{186, 1257}, FontCharset{204, 1251}, FontCharset{222, 874},
    FontCharset{238, 1250}, FontCharset{254, 437},  FontCharset{255, 850},
};

constexpr std::size_t mostFonts = 10'000;

}  // namespace

void RtfFonts::takeTableWord(const RtfToken& token) {
    if (!token.parameter)
        return;
    if (token.word == "f") {
        current_ = *token.parameter;
    } else if (token.word == "fcharset") {
        const auto known = std::ranges::find(fontCharsets, *token.parameter, &FontCharset::charset);
        if (known != fontCharsets.end() && codePages_.size() < mostFonts)
            codePages_.insert_or_assign(current_, known->codePage);
    } else if (token.word == "cpg" && codePages_.size() < mostFonts) {
        codePages_.insert_or_assign(current_, *token.parameter);
    }
}

std::optional<int> RtfFonts::codePage(int font) const {
    const auto found = codePages_.find(font);
    return found == codePages_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace tavrelon::desktop
