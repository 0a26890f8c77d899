#pragma once

#include <unordered_map>

#include "desktop/documents/rtf_tokenizer.h"

namespace tavrelon::desktop {

/// The fonts of an RTF document, of which only the code page of their text matters.
class RtfFonts {
 public:
    /// Takes one word of the font table: \f begins a font, \fcharset and \cpg tell its code page.
    void takeTableWord(const RtfToken& token);

    /// Absent for a font that tells none.
    std::optional<int> codePage(int font) const;

 private:
    int current_ = 0;
    std::unordered_map<int, int> codePages_;
};

}  // namespace tavrelon::desktop
