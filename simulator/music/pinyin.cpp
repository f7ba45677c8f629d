#include "music/pinyin.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>

#include "music/text.h"

namespace ipodsim
{
namespace
{
using TransliteratorPtr = std::unique_ptr<icu::Transliterator>;

constexpr char kLatin[] = "; Any-Latin; Latin-ASCII; Lower";

// Read wrongly, character by character, by the rules of ICU.
constexpr char kWords[] =
    "音乐 > ' yin yue '; 乐队 > ' yue dui '; 乐章 > ' yue zhang '; 乐曲 > ' yue qu '; 声乐 > ' sheng yue ';"
    "民乐 > ' min yue '; 器乐 > ' qi yue '; 奏鸣曲 > ' zou ming qu '; 银行 > ' yin hang '; 行走 > ' xing zou ';"
    "长城 > ' chang cheng '; 长江 > ' chang jiang '; 长夜 > ' chang ye '; 长路 > ' chang lu ';"
    "重逢 > ' chong feng '; 重来 > ' chong lai '; 还是 > ' hai shi '; 都会 > ' dou hui '; 了解 > ' liao jie ';";

// Only where a name starts.
constexpr char kSurnames[] = "^ { 朴 > ' piao '; ^ { 覃 > ' qin '; ^ { 冼 > ' xian ';";

TransliteratorPtr FromRules(const char* rules)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    return TransliteratorPtr(icu::Transliterator::createFromRules("own", icu::UnicodeString::fromUTF8(rules),
                                                                  UTRANS_FORWARD, where, status));
}

TransliteratorPtr FromId(const std::string& id)
{
    UErrorCode status = U_ZERO_ERROR;
    return TransliteratorPtr(
        icu::Transliterator::createInstance(icu::UnicodeString::fromUTF8(id), UTRANS_FORWARD, status));
}

struct Reader
{
    TransliteratorPtr own;
    TransliteratorPtr general;

    std::string operator()(const std::string& text) const
    {
        icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
        if (own != nullptr) own->transliterate(unicode);
        if (general != nullptr) general->transliterate(unicode);
        std::string latin;
        unicode.toUTF8String(latin);
        return latin;
    }
};

const Reader& ReaderFor(Reading reading)
{
    static const Reader person{FromRules(kSurnames), FromId(std::string("Han-Latin/Names") + kLatin)};
    static const Reader words{FromRules(kWords), FromId(std::string("Han-Latin") + kLatin)};
    return reading == Reading::Person ? person : words;
}

std::string SqueezeBlanks(const std::string& text)
{
    std::string squeezed;
    for (const char c : text)
        if (c != ' ' || (!squeezed.empty() && squeezed.back() != ' ')) squeezed += c;
    if (!squeezed.empty() && squeezed.back() == ' ') squeezed.pop_back();
    return squeezed;
}
}  // namespace

std::string Pinyin(const std::string& text, Reading reading)
{
    return SqueezeBlanks(IsAscii(text) ? ToLowerAscii(text) : ReaderFor(reading)(text));
}
}  // namespace ipodsim
