#include "names/word_reader.h"

#include <unicode/uchar.h>

#include "names/hangul.h"
#include "names/reading.h"

namespace ipodkit
{
namespace
{
// Ways of writing that people type, where ICU's own choice is one that can be turned back.
constexpr char16_t kLatin[] = u"Latin-ASCII; Lower";
constexpr char16_t kRussian[] = u"Russian-Latin/BGN; Any-Latin; Latin-ASCII; Lower";
constexpr char16_t kUkrainian[] = u"Ukrainian-Latin/BGN; Any-Latin; Latin-ASCII; Lower";
constexpr char16_t kGreek[] = u"Greek-Latin/UNGEGN; Any-Latin; Latin-ASCII; Lower";
constexpr char16_t kArabic[] = u"Arabic-Latin/BGN; Any-Latin; Latin-ASCII; Lower";
constexpr char16_t kOther[] = u"Any-Latin; Latin-ASCII; Lower";

constexpr char16_t kUkrainianLetters[] = u"іїєґІЇЄҐ";

// Syllables of foreign words, and those that are written in two ways and sound alike.
constexpr char16_t kKana[] =
    u"ぢゃ>ja;ぢゅ>ju;ぢょ>jo;ぢ>ji;づ>zu;ヂャ>ja;ヂュ>ju;ヂョ>jo;ヂ>ji;ヅ>zu;"
    u"ヴァ>va;ヴィ>vi;ヴェ>ve;ヴォ>vo;ヴュ>vyu;ウィ>wi;ウェ>we;ウォ>wo;イェ>ye;"
    u"クァ>kwa;クィ>kwi;クェ>kwe;クォ>kwo;グァ>gwa;ツァ>tsa;ツィ>tsi;ツェ>tse;ツォ>tso;"
    u"トゥ>tu;ドゥ>du;テュ>tyu;デュ>dyu;フュ>fyu;スィ>si;ズィ>zi;"
    u"::Any-Latin;::Latin-ASCII;::Lower;";

bool IsAscii(const icu::UnicodeString& word)
{
    for (int i = 0; i < word.length(); ++i)
        if (word.charAt(i) >= 128) return false;
    return true;
}

UScriptCode ScriptOf(UChar32 character)
{
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(character, &status);
}

// Of the first letter that is not Latin.
UScriptCode ScriptOf(const icu::UnicodeString& word)
{
    for (int at = 0; at < word.length(); at = word.moveIndex32(at, 1))
    {
        const UScriptCode script = ScriptOf(word.char32At(at));
        if (script != USCRIPT_LATIN && script != USCRIPT_COMMON && script != USCRIPT_INHERITED) return script;
    }
    return USCRIPT_LATIN;
}

bool IsUkrainian(const icu::UnicodeString& word)
{
    for (int i = 0; i < word.length(); ++i)
        if (icu::UnicodeString(kUkrainianLetters).indexOf(word.charAt(i)) >= 0) return true;
    return false;
}

const char16_t* RulesOf(const icu::UnicodeString& word)
{
    switch (ScriptOf(word))
    {
        case USCRIPT_LATIN:
            return kLatin;
        case USCRIPT_CYRILLIC:
            return IsUkrainian(word) ? kUkrainian : kRussian;
        case USCRIPT_GREEK:
            return kGreek;
        case USCRIPT_ARABIC:
            return kArabic;
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
            return kKana;
        default:
            return kOther;
    }
}

// A system without the rules of a script has none that read it: its words are left out.
std::shared_ptr<icu::Transliterator> RulesOrNone(const char16_t* id)
{
    auto rules = id == kKana ? ParseRules(id) : MakeRules(id);
    if (rules == nullptr) rules = MakeRules(kOther);
    return rules == nullptr ? MakeRules(u"Null") : rules;
}
}  // namespace

const icu::Transliterator& WordReader::RulesFor(const icu::UnicodeString& word)
{
    auto& rules = m_rules[RulesOf(word)];
    if (rules == nullptr) rules = RulesOrNone(RulesOf(word));
    return *rules;
}

std::string WordReader::Read(icu::UnicodeString word)
{
    if (IsAscii(word))
    {
        std::string letters;
        word.toLower().toUTF8String(letters);
        return letters;
    }
    word = RomanizedHangul(word);
    return Letters(RulesFor(word), word);
}
}  // namespace ipodkit
