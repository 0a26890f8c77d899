#include "output/output_writer.h"

#include <cstdlib>

#include "async/waits.h"
#include "text/foreign_text.h"

namespace tavrelon::output {

using namespace std::chrono_literals;
using Method = scenes::ReplacementStrategy::Method;
using platform::AXAttribute;
using platform::AXElement;

namespace {

// What slow targets need between posted keys; measured, and not to be turned into polling.
constexpr auto afterEscape = 50ms;
constexpr int waitsPerEscape = 6, escapeWaits = 3 * waitsPerEscape;  // for an input method on a slow machine
constexpr auto afterBackspace = 10ms;
constexpr auto afterLastBackspace = 50ms;
constexpr auto beforePaste = 20ms - platform::KeyPoster::chordWait;

// How often a field whose application did not answer is looked at again before the answer is pasted after all.
constexpr int stalledLooks = 20;
constexpr auto betweenLooks = 100ms;

text::LocalizedText describe(OutputWriterError::Code code, const text::LocalizedText& detail) {
    switch (code) {
        case OutputWriterError::Code::writeFailed:
            return text::LocalizedText(QStringLiteral("Failed to write output: %1"), QStringLiteral("写入失败：%1"))
                .arg(detail);
        case OutputWriterError::Code::permissionDenied:
            return {QStringLiteral("Accessibility permission is required"), QStringLiteral("需要辅助功能权限")};
        case OutputWriterError::Code::noFrontmostApp:
            return {QStringLiteral("No frontmost application found"), QStringLiteral("找不到前台应用")};
        case OutputWriterError::Code::invalidImageData:
            return {QStringLiteral("Invalid image data"), QStringLiteral("图片数据无效")};
        case OutputWriterError::Code::leftOnClipboard:
            return {QStringLiteral("Answer is on the clipboard"), QStringLiteral("回答已放入剪贴板")};
    }
    std::abort();
}

OutputWriterError clipboardRefused() {
    return OutputWriterError(OutputWriterError::Code::writeFailed,
                             {QStringLiteral("the clipboard could not be taken"), QStringLiteral("剪贴板不可用")});
}

}  // namespace

OutputWriterError::OutputWriterError(Code code, const text::LocalizedText& detail)
    : LocalizedError(describe(code, detail)), code_(code) {}

void ensureWritten(Placement placement) {
    if (placement == Placement::OnClipboard)
        throw OutputWriterError(OutputWriterError::Code::leftOnClipboard);
}

async::Task<Placement> OutputWriter::writeText(QString text, Method method, std::optional<qint64> deleteCharCount,
                                               qint64 fallbackDeleteCount, StandingText standing) {
    text = text::writableAnswer(text);
    const auto fitting = place_.isInFront() ? textForPlace(text) : std::nullopt;
    if (!fitting)
        co_return leaveOnClipboard(text);
    if (method == Method::replaceSelection)
        co_return co_await replaceSelection(*fitting);
    if (method == Method::deleteChars && deleteCharCount.value_or(fallbackDeleteCount) > 0 &&
        co_await wasReplacedInPlace(standing, *fitting))
        co_return Placement::Written;
    // Before anything is removed: a clipboard that is refused then costs the user nothing.
    co_await keepClipboard();
    leaveOnClipboard(*fitting);
    const platform::ModifiersAside aside(platform_.keyPoster);  // over the whole write: no flicker between its keys
    switch (method) {
        case Method::replaceSelection:
            break;
        case Method::replaceComposition:
            pressPlain(keys::keyEscape);
            co_await async::pause(platform_.mainLoop, afterEscape);
            break;
        case Method::deleteChars:
            if (co_await deleteBackward(deleteCharCount.value_or(fallbackDeleteCount), std::move(standing)) ==
                Placement::OnClipboard)
                co_return Placement::OnClipboard;
            break;
    }
    co_return co_await pressPaste();
}

async::Task<bool> OutputWriter::wasReplacedInPlace(StandingText standing, QString text) {
    const auto field = standing.text.isEmpty() ? std::nullopt : place_.field();
    const auto range = field ? field->rangeOf(standing) : std::nullopt;
    if (!range)
        co_return false;
    const auto outcome = platform_.accessibility.replaceText(field->element, *range,
                                                             field->text.sliced(range->location, range->length), text);
    co_return co_await tookEffect(outcome, field->element, std::move(text));
}

std::optional<QString> OutputWriter::textForPlace(QString text) const {
    if (place_.takesNoPaste())
        return std::nullopt;
    if (!place_.isTerminal())
        return text;
    while (text.endsWith(u'\n'))
        text.chop(1);
    return text.contains(u'\n') ? std::nullopt : std::optional(text);
}

Placement OutputWriter::leaveOnClipboard(const QString& text) {
    platform_.pasteboard.clearContents();
    if (!platform_.pasteboard.setString(text))
        throw clipboardRefused();
    return Placement::OnClipboard;
}

async::Task<void> OutputWriter::keepClipboard() {
    if (keepsClipboard())
        co_await keptClipboard_.keep();
    else
        keptClipboard_.forget();
}

async::Task<Placement> OutputWriter::replaceSelection(QString text) {
    auto& accessibility = platform_.accessibility;
    if (!accessibility.isProcessTrusted())
        throw OutputWriterError(OutputWriterError::Code::permissionDenied);
    const auto application = platform_.workspace.frontmostApplication();
    if (!application)
        throw OutputWriterError(OutputWriterError::Code::noFrontmostApp);
    const auto focused = accessibility.copyAttribute(platform::axApplicationElement(application->processIdentifier),
                                                     AXAttribute::FocusedUIElement);
    const auto* element = focused ? std::get_if<AXElement>(&*focused) : nullptr;
    if (element &&
        co_await tookEffect(accessibility.setAttribute(*element, AXAttribute::SelectedText, text), *element, text))
        co_return Placement::Written;
    co_return co_await pasteText(std::move(text));
}

async::Task<bool> OutputWriter::tookEffect(platform::AXError outcome, AXElement field, QString text) {
    if (outcome != platform::AXError::CannotComplete)
        co_return outcome == platform::AXError::Success;
    // An application that stalls does what it was told when it goes on, and with a paste the text would stand twice.
    for (int look = 0; look < stalledLooks; ++look) {
        co_await async::pause(platform_.mainLoop, betweenLooks);
        if (const auto value = platform_.accessibility.copyAttribute(field, AXAttribute::Value)) {
            const auto* now = std::get_if<QString>(&*value);
            co_return now && now->contains(text);
        }
    }
    co_return false;
}

async::Task<void> OutputWriter::cancelComposition() {
    auto& poster = platform_.keyPoster;
    const platform::ModifiersAside aside(poster);
    for (int wait = 0; wait < escapeWaits && poster.isCompositionOpen() && place_.isInFront(); ++wait) {
        // Some go back one step with each Escape. Again only after a while: the program might get it instead.
        if (wait % waitsPerEscape == 0)
            pressPlain(keys::keyEscape);
        co_await async::pause(platform_.mainLoop, afterEscape);
    }
}

async::Task<Placement> OutputWriter::deleteBackward(qint64 count, StandingText standing) {
    if (count < 0)
        std::abort();
    if (count > 0 && !place_.isInFront())
        co_return Placement::OnClipboard;
    if (const auto field = count > 0 && !standing.text.isEmpty() ? place_.field() : std::nullopt) {
        if (field->selection.length > 0)  // the user's, made meanwhile: a key or a paste would take it away
            co_return Placement::OnClipboard;
        if (!field->isBeforeCaret(standing.text))
            count = 0;
    }
    const platform::ModifiersAside aside(platform_.keyPoster);
    auto& loop = platform_.mainLoop;
    for (qint64 i = 0; i < count; ++i) {
        const auto begin = loop.now();
        if (!place_.isWindowInFront())
            co_return Placement::OnClipboard;
        pressPlain(keys::keyBackspace);
        // The look takes its time again before the next key, so from key to key it is the whole wait.
        co_await async::pause(loop, std::max<std::chrono::nanoseconds>(afterBackspace - (loop.now() - begin), 1ms));
    }
    co_await async::pause(loop, afterLastBackspace);
    co_return Placement::Written;
}

async::Task<Placement> OutputWriter::pasteText(QString text) {
    text = text::writableAnswer(text);
    const auto fitting = textForPlace(text);
    // Its owner may be slow, so it is asked for only where that is wanted.
    co_await keepClipboard();
    leaveOnClipboard(fitting.value_or(text));
    co_return fitting ? co_await pressPaste() : Placement::OnClipboard;
}

async::Task<Placement> OutputWriter::pressPaste() {
    co_await async::pause(platform_.mainLoop, beforePaste);
    if (!place_.isInFront() || place_.takesNoPaste())
        co_return Placement::OnClipboard;
    const platform::ModifiersAside aside(platform_.keyPoster);
    platform_.keyPoster.press(keys::keyV, place_.pasteModifiers());
    keptClipboard_.giveBackOncePasted();
    co_await async::pause(platform_.mainLoop, postPasteDelay);
    co_return Placement::Written;
}

async::Task<ImageOutcome> OutputWriter::writeImage(std::optional<platform::PasteboardItem> picture,
                                                   std::optional<QString> caption, AutoPaste autoPaste) {
    if (autoPaste == AutoPaste::Yes)
        co_await keepClipboard();
    platform_.pasteboard.clearContents();
    if (!picture) {
        if (caption)
            co_return ImageOutcome{*caption};
        throw OutputWriterError(OutputWriterError::Code::invalidImageData);
    }
    std::vector<platform::PasteboardItem> items;
    items.push_back(*std::move(picture));
    if (!platform_.pasteboard.writeItems(std::move(items)))
        throw clipboardRefused();
    ImageOutcome outcome{caption.value_or(pictureCopied.toString())};
    if (autoPaste == AutoPaste::Yes)
        outcome.placement = co_await pressPaste();
    co_return outcome;
}

}  // namespace tavrelon::output
