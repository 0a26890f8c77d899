#include "desktop/documents/pdf_text.h"

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <climits>
#include <memory>

namespace tavrelon::desktop {

std::optional<QString> pdfText(const QByteArray& bytes, qsizetype enough) {
    if (bytes.isEmpty() || bytes.size() > INT_MAX)
        return std::nullopt;
    poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_raw_data(bytes.constData(), static_cast<int>(bytes.size())));
    if (!document || document->is_locked())
        return std::nullopt;
    QString text;
    for (int number = 0; number < document->pages() && text.size() < enough; ++number) {
        const std::unique_ptr<poppler::page> page(document->create_page(number));
        if (!page)
            continue;
        const auto utf8 = page->text(poppler::rectf(), poppler::page::non_raw_non_physical_layout).to_utf8();
        if (!utf8.empty())
            text += QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())) + u'\n';
    }
    return text;
}

}  // namespace tavrelon::desktop
