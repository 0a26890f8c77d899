#pragma once

#include <QStringView>
#include <array>

/// The word lists by which a request for a picture is told, in Chinese, English and pinyin. Their order counts where
/// prefixes are removed.
namespace tavrelon::generation {

/// Words for pictures.
inline constexpr std::array<QStringView, 23> imageKeywordsZh{
    u"图片", u"图像", u"照片", u"摄影", u"画",   u"画图", u"绘画", u"绘图", u"作画", u"作图", u"出图",  u"插画",
    u"插图", u"素描", u"海报", u"壁纸", u"封面", u"渲染", u"图标", u"头像", u"logo", u"张图", u"一张图"};

inline constexpr std::array<QStringView, 23> imageKeywordsEn{
    u"image",        u"picture",        u"photo",         u"draw",   u"drawing",     u"illustration",
    u"sketch",       u"paint",          u"painting",      u"render", u"rendering",   u"poster",
    u"logo",         u"cover",          u"wallpaper",     u"art",    u"concept art", u"banner",
    u"create image", u"generate image", u"make an image", u"icon",   u"avatar"};

/// Words for making something. A keyword needs one beside it.
inline constexpr std::array<QStringView, 10> imageActionKeywordsZh{u"生成",   u"创建",   u"制作",   u"做",   u"设计",
                                                                   u"来一张", u"整一张", u"画一张", u"画个", u"画一幅"};

inline constexpr std::array<QStringView, 6> imageActionKeywordsEn{u"generate", u"create",     u"make",
                                                                  u"design",   u"illustrate", u"render"};

/// The same two in toneless pinyin, as typed on an English keyboard. They match the beginnings of words.
inline constexpr std::array<QStringView, 10> imageActionKeywordsPinyin{
    u"hua", u"huatu", u"huahua", u"huayi", u"zuotu", u"shengcheng", u"chuangjian", u"sheji", u"zhizuo", u"zuo"};

inline constexpr std::array<QStringView, 8> imageKeywordsPinyin{u"tupian", u"tuxiang", u"tubiao", u"touxiang",
                                                                u"haibao", u"chahua",  u"logotu", u"logo"};

/// What people put before a wish, removed from an image prompt, and then the wish itself.
inline constexpr std::array<QStringView, 11> imagePromptPolitePrefixesZh{
    u"请", u"帮我", u"帮忙", u"麻烦", u"给我", u"能不能", u"帮我来", u"帮我生成", u"帮我画", u"帮我做", u"帮我设计"};

inline constexpr std::array<QStringView, 28> imagePromptActionPrefixesZh{
    u"生成一张", u"生成一幅", u"生成",     u"创建一张", u"创建一幅", u"创建",   u"制作一张",
    u"制作一幅", u"制作",     u"设计一张", u"设计一幅", u"设计",     u"来一张", u"来张",
    u"整一张",   u"画一张",   u"画张",     u"画个",     u"画一幅",   u"画幅",   u"作图",
    u"画图",     u"出图",     u"做一张",   u"做张",     u"做个",     u"做一幅", u"做幅"};

}  // namespace tavrelon::generation
