#include <gtest/gtest.h>

#include <QStringEncoder>

#include "desktop/documents/html_charset.h"
#include "desktop/documents/plain_text.h"
#include "desktop/documents/rtf_text.h"
#include "support/qt_gtest.h"

namespace tavrelon::desktop {

using namespace Qt::StringLiterals;

namespace {

QString rtf(const QByteArray& bytes, qsizetype enough = 1'000'000) {
    return rtfText(bytes, enough).value_or(u"no RTF"_s);
}

QByteArray encoded(const QString& text, QStringConverter::Encoding encoding,
                   QStringConverter::Flag flag = QStringConverter::Flag::Default) {
    QStringEncoder encoder(encoding, flag);
    return encoder(text);
}

}  // namespace

TEST(PlainText, TheFirstEncodingThatFitsIsTaken) {
    const auto text = u"Zoë schrieb: 你好 👋\r\n"_s;
    using enum QStringConverter::Encoding;
    using enum QStringConverter::Flag;
    EXPECT_EQ(plainText(text.toUtf8()), text);
    for (const auto encoding : {Utf8, Utf16LE, Utf16BE})
        EXPECT_EQ(plainText(encoded(text, encoding, WriteBom)), text);
    EXPECT_EQ(plainText(encoded(text, Utf16LE)), text) << "without a mark";
    EXPECT_EQ(plainText(encoded(u"plain letters"_s, Utf16LE)), u"plain letters"_s);
    EXPECT_EQ(plainText("caf\xe9s na\xefve \x93quoted\x94"), u"cafés naïve “quoted”"_s) << "no Chinese words";
    EXPECT_EQ(plainText("GB: \xc4\xe3\xba\xc3\xa3\xac\xca\xc0\xbd\xe7 ok"), u"GB: 你好，世界 ok"_s);
    EXPECT_EQ(plainText(QByteArray("a text with one stray \0 in the middle of 你好", 47)),
              u"a text with one stray  in the middle of 你好"_s);
    EXPECT_EQ(plainText("\xff\xfe"
                        "a"),
              u"ÿþa"_s)
        << "half a unit";
    EXPECT_EQ(plainText(""), QString());
}

TEST(HtmlCharset, TheMarkThenTheDeclarationThenTheBytesDecide) {
    EXPECT_EQ(htmlMarkup("<meta charset=\"windows-1251\">\xcf\xf0\xe8\xe2\xe5\xf2"),
              u"<meta charset=\"windows-1251\">Привет"_s);
    EXPECT_EQ(htmlMarkup("<meta content='text/html; charset=GB2312'>\xc4\xe3\xba\xc3"),
              u"<meta content='text/html; charset=GB2312'>你好"_s);
    EXPECT_EQ(htmlMarkup("<p>你好"), u"<p>你好"_s);
    EXPECT_EQ(htmlMarkup("<meta charset=../evil>\x93quoted\x94"), u"<meta charset=../evil>“quoted”"_s);
    EXPECT_EQ(
        htmlMarkup(encoded(u"<meta charset=latin1>ü"_s, QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom)),
        u"<meta charset=latin1>ü"_s);
}

TEST(RtfText, WordsThatStandForTextAndThoseThatDoNot) {
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\deff0 Dear \\b Zoe\\b0 ,\\par\r\nsee you\\line soon\\tab \\emdash\\~Max\\par}"),
              u"Dear Zoe,\nsee you\nsoon\t—\u00a0Max\n"_s);
    EXPECT_EQ(rtf("{\\rtf1 \\{a\\\\b\\}\\\nc\\-d\\_e\\lquote f\\rquote}"), u"{a\\b}\ncd\u2011e‘f’"_s);
    EXPECT_EQ(rtf("{\\rtf1 x{\\v hidden}y{\\v hidden\\v0 shown}z{\\v a\\plain b}}"), u"xyshownzb"_s);
    EXPECT_EQ(rtf("{\\rtf1\\trowd a\\cell b\\cell\\row c}"), u"a\tb\t\nc"_s);
}

TEST(RtfText, DestinationsThatAreNoTextAreSkipped) {
    EXPECT_EQ(rtf("{\\rtf1{\\fonttbl{\\f0\\fswiss Arial;}}{\\colortbl;\\red255\\green0\\blue0;}"
                  "{\\stylesheet{\\s1 heading 1;}}{\\info{\\title Secret}}{\\*\\generator Writer;}"
                  "{\\header top}{\\footer bottom}{\\pict\\pngblip 89504e47}{\\*\\unknown{\\deep gone}}{\\unknown kept}"
                  "text{\\footnote note}}"),
              u"kepttext"_s);
    EXPECT_EQ(rtf("{\\rtf1 a{\\pict\\bin7 {{{{\\}}}b}"), u"ab"_s);
    EXPECT_EQ(
        rtf("{\\rtf1 a{\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt the link}}b{\\field{\\fldinst PAGE}}}"),
        u"athe linkb"_s);
}

TEST(RtfText, UnicodeEscapesReplaceTheirFallback) {
    EXPECT_EQ(rtf("{\\rtf1 \\u20320?\\u22909 ?!}"), u"你好!"_s);
    EXPECT_EQ(rtf("{\\rtf1 \\u-10179?\\u-8704?}"), u"😀"_s);
    EXPECT_EQ(rtf("{\\rtf1\\uc2 \\u20320\\'c4\\'e3{\\uc0 \\u22909 x}\\u20320\\'c4\\'e3y}"), u"你好x你y"_s);
    EXPECT_EQ(rtf("{\\rtf1\\uc2 {\\u20320 ?}x}"), u"你x"_s) << "a group's end ends the fallback";
    EXPECT_EQ(rtf("{\\rtf1\\uc1 \\u8217\\lquote s}"), u"’s"_s) << "a word is one fallback character";
    EXPECT_EQ(rtf("{\\rtf1 {\\v \\u20320?}x}"), u"x"_s);
}

TEST(RtfText, BytesAreReadInTheCodePageOfTheirFont) {
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg1251 \\'cf\\'f0\\'e8\\'e2\\'e5\\'f2}"), u"Привет"_s);
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg936 \\'c4\\'e3\\'ba\\'c3}"), u"你好"_s);
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fcharset0 Arial;}{\\f1\\fcharset134 SimSun;}"
                  "{\\f2\\fcharset204{\\*\\fname X;}Y;}{\\f3\\fcharset128 M;}{\\f4\\cpg1253 G;}}"
                  "\\f0\\'e9{\\f1\\'c4\\'e3}\\'e9\\f2\\'cf\\f3\\'82\\'a0\\f4\\'e1\\plain\\'e9}"),
              u"é你éПあαé"_s);
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg936 \\'81A\\'81\\'5c}"), u"丄乗"_s)
        << "the second byte of a character may be a letter";
    EXPECT_EQ(rtf("{\\rtf1\\mac \\'8e}"), u"é"_s);
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg1255 \\'f9\\'ec\\'e5\\'ed{\\b \\'f9}}"), u"שלוםש"_s)
        << "a letter may wait for its vowel";
    EXPECT_EQ(rtf("{\\rtf1\\ansi\\ansicpg1258 Vi\\'ea\\'f2t na}"),
              u"Việt na"_s.normalized(QString::NormalizationForm_C));
    EXPECT_EQ(rtf("{\\rtf1\\ansicpg77777 \\'e9}"), u"é"_s);
    EXPECT_EQ(rtf("{\\rtf1\\ansicpg936 \\'c4}"), u"\uFFFD"_s) << "half a character";
}

TEST(RtfText, FaultyDocumentsGiveWhatTheyHold) {
    EXPECT_EQ(rtf("{\\rtf1 a{b{c"), u"abc"_s);
    EXPECT_EQ(rtf("{\\rtf1 a}}}}b{c}"), u"a"_s);
    EXPECT_EQ(rtf("{\\rtf1 a\\"), u"a"_s);
    EXPECT_EQ(rtf("{\\rtf1 a\\'4"), u"a4"_s);
    EXPECT_EQ(rtf("{\\rtf1 a\\bin99999999999999 b"), u"ab"_s);
    EXPECT_EQ(rtf("{\\rtf1 a\\bin-4 b}"), u"ab"_s);
    EXPECT_EQ(rtf("{\\rtf1 a\\uc-5\\u20320 b}"), u"a你b"_s);
    EXPECT_EQ(rtf("{\\rtf1 a{\\*}b}"), u"ab"_s);
    EXPECT_EQ(rtf("{\\rtf1 " + QByteArray(100, 'a') + "}", 40), QString(40, u'a'));
    EXPECT_EQ(rtf("{\\rtf1" + QByteArray("\\bin0").repeated(100'000) + " a}"), u"a"_s);
    EXPECT_EQ(rtf("{\\rtf1 " + QByteArray("{").repeated(9'000) + "a"), u"a"_s);
    for (const auto& no : {QByteArray(), QByteArray("{"), QByteArray("plain"), QByteArray("{\\rt}"),
                           QByteArray("\\rtf1"), "{\\rtf1 " + QByteArray("{").repeated(1'000'000)})
        EXPECT_EQ(rtfText(no, 1'000), std::nullopt) << no.left(20).toStdString();
}

}  // namespace tavrelon::desktop
