#include "reader.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <string_view>

namespace ipodkit
{
namespace
{
struct Phrase
{
    std::u16string_view characters;
    const char* reading;
};

// Words of titles, and names, whose characters are read otherwise alone.
constexpr Phrase kPhrases[] = {
    {u"交响乐", "jiao xiang yue"},
    {u"摇滚乐", "yao gun yue"},
    {u"爵士乐", "jue shi yue"},
    {u"乐队", "yue dui"},
    {u"乐团", "yue tuan"},
    {u"音乐", "yin yue"},
    {u"乐章", "yue zhang"},
    {u"乐曲", "yue qu"},
    {u"乐器", "yue qi"},
    {u"声乐", "sheng yue"},
    {u"民乐", "min yue"},
    {u"配乐", "pei yue"},
    {u"重庆", "chong qing"},
    {u"重来", "chong lai"},
    {u"重新", "chong xin"},
    {u"重逢", "chong feng"},
    {u"重复", "chong fu"},
    {u"重生", "chong sheng"},
    {u"银行", "yin hang"},
    {u"长大", "zhang da"},
    {u"成长", "cheng zhang"},
    {u"长城", "chang cheng"},
    {u"长江", "chang jiang"},
    {u"单身", "dan shen"},
    {u"单车", "dan che"},
    {u"曾经", "ceng jing"},
    {u"睡觉", "shui jiao"},
    {u"大地", "da di"},
    {u"天地", "tian di"},
    {u"地球", "di qiu"},
    {u"成都", "cheng du"},
    {u"首都", "shou du"},
    {u"还给", "huan gei"},
    {u"调查", "diao cha"},
    {u"传奇", "chuan qi"},
    {u"自传", "zi zhuan"},
    {u"地方", "di fang"},
    {u"了不起", "liao bu qi"},
    {u"空调", "kong tiao"},
    {u"弹琴", "tan qin"},
    {u"万俟", "mo qi"},
    {u"玮柏", "wei bo"},
    {u"靓颖", "liang ying"},
};

bool IsHan(UChar32 character)
{
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(character, &status) == USCRIPT_HAN;
}

bool IsWordPart(UChar32 character)
{
    return (u_isalnum(character) || u_charType(character) == U_NON_SPACING_MARK) && !IsHan(character);
}

// They join what they stand between: don't.
bool IsApostrophe(UChar32 character)
{
    return character == u'\'' || character == 0x2019;
}

int HanLength(const icu::UnicodeString& name, int at)
{
    int length = 0;
    for (; at < name.length() && IsHan(name.char32At(at)); at = name.moveIndex32(at, 1)) ++length;
    return length;
}

// As long as a person's name is as a rule; longer ones are titles. Two characters are common words, hardly ever names.
bool MayBeginWithSurname(const icu::UnicodeString& name, int at)
{
    const char16_t first = name.charAt(at);
    if (first == u'重' || first == u'参') return false;
    const bool begins = at == 0 || !IsHan(name.char32At(at - 1));
    const int length = HanLength(name, at);
    return begins && length >= 2 && length <= 3;
}

// Only what can be typed.
std::string Letters(const icu::UnicodeString& latin)
{
    std::string letters;
    for (int i = 0; i < latin.length(); ++i)
    {
        const char16_t unit = latin.charAt(i);
        const bool typed = (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9');
        if (typed) letters += static_cast<char>(unit);
    }
    return letters;
}

void Append(std::string& reading, const std::string& token)
{
    if (token.empty()) return;
    if (!reading.empty()) reading += ' ';
    reading += token;
}

std::shared_ptr<icu::Transliterator> Rules(const char16_t* id)
{
    UErrorCode status = U_ZERO_ERROR;
    std::shared_ptr<icu::Transliterator> rules(icu::Transliterator::createInstance(id, UTRANS_FORWARD, status));
    return U_FAILURE(status) ? nullptr : rules;
}
}  // namespace

Result<Reader> Reader::Make()
{
    auto words = Rules(u"Any-Latin; Latin-ASCII; Lower");
    auto surnames = Rules(u"Han-Latin/Names; Latin-ASCII; Lower");
    if (words == nullptr || surnames == nullptr)
        return tl::unexpected<Error>(Error{ErrorKind::BadArgument, "ICU has no rules from Chinese to Latin here"});
    return Reader(std::move(words), std::move(surnames));
}

Reader::Reader(TransliteratorPtr words, TransliteratorPtr surnames)
    : m_words(std::move(words)), m_surnames(std::move(surnames))
{
}

std::string Reader::Read(const icu::UnicodeString& name)
{
    std::string reading;
    for (int at = 0; at < name.length();)
    {
        const UChar32 character = name.char32At(at);
        if (IsHan(character))
            at = ReadHan(name, at, reading);
        else if (IsWordPart(character))
            at = ReadWord(name, at, reading);
        else
            at = name.moveIndex32(at, 1);
    }
    return reading;
}

// Where the phrase ends; where it began when there is none.
int Reader::ReadPhrase(const icu::UnicodeString& name, int at, std::string& reading) const
{
    for (const Phrase& phrase : kPhrases)
    {
        const int length = static_cast<int>(phrase.characters.size());
        if (name.compare(at, length, phrase.characters.data(), 0, length) != 0) continue;
        Append(reading, phrase.reading);
        return at + length;
    }
    return at;
}

int Reader::ReadHan(const icu::UnicodeString& name, int at, std::string& reading)
{
    const int end = ReadPhrase(name, at, reading);
    if (end != at) return end;
    const UChar32 character = name.char32At(at);
    const bool surname = MayBeginWithSurname(name, at);
    Append(reading, surname ? ReadCharacter(m_surnameCharacters, *m_surnames, character)
                            : ReadCharacter(m_characters, *m_words, character));
    return name.moveIndex32(at, 1);
}

const std::string& Reader::ReadCharacter(Readings& known, const icu::Transliterator& rules, UChar32 character)
{
    const auto [entry, fresh] = known.try_emplace(character);
    if (!fresh) return entry->second;
    icu::UnicodeString latin(character);
    rules.transliterate(latin);
    return entry->second = Letters(latin);
}

int Reader::ReadWord(const icu::UnicodeString& name, int at, std::string& reading)
{
    icu::UnicodeString word;
    bool plain = true;
    for (; at < name.length(); at = name.moveIndex32(at, 1))
    {
        const UChar32 character = name.char32At(at);
        if (IsApostrophe(character)) continue;
        if (!IsWordPart(character)) break;
        plain = plain && character < 128;
        word.append(character);
    }
    if (plain)
        word.toLower();
    else
        m_words->transliterate(word);
    Append(reading, Letters(word));
    return at;
}
}  // namespace ipodkit
