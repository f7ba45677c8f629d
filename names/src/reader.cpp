#include "reader.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>

#include "rules.h"

namespace ipodnames
{
namespace
{
icu::UnicodeSet SetOf(const char16_t* pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeSet set(pattern, status);
    set.freeze();
    return set;
}

icu::UnicodeString Joined(std::initializer_list<const char16_t*> rules)
{
    icu::UnicodeString joined;
    for (const char16_t* const part : rules) joined += icu::UnicodeString(part);
    return joined;
}

icu::UnicodeString Composed(const std::string& name)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(name);
    const icu::UnicodeString composed = icu::Normalizer2::getNFCInstance(status)->normalize(text, status);
    return U_FAILURE(status) ? text : composed;
}

bool IsWordPart(UChar32 character)
{
    return u_isalnum(character) || (U_GET_GC_MASK(character) & U_GC_M_MASK) != 0;
}

// "A$AP", "Ke$ha": a dollar sign beside a letter is a letter, unless an amount follows.
bool IsDollarForS(const icu::UnicodeString& name, int at)
{
    if (name.char32At(at) != u'$') return false;
    const bool letterBefore = at > 0 && u_isalpha(name.char32At(name.moveIndex32(at, -1)));
    const UChar32 next = at + 1 == name.length() ? u' ' : name.char32At(at + 1);
    return u_isalpha(next) || (letterBefore && !u_isdigit(next));
}

// Marks that transliteration produces, such as for a soft sign, are not typed.
std::string Letters(const icu::UnicodeString& latin)
{
    std::string typed;
    for (int at = 0; at < latin.length(); ++at)
    {
        const char16_t unit = latin.charAt(at);
        if (unit == kUmlautMark) typed += kUmlaut;
        if (unit < 0x80 && u_isalnum(unit)) typed += static_cast<char>(u_tolower(unit));
        if (unit == u' ' && !typed.empty() && typed.back() != ' ') typed += ' ';
    }
    if (!typed.empty() && typed.back() == ' ') typed.pop_back();
    return typed;
}
}  // namespace

std::string WithoutUmlauts(std::string reading)
{
    std::replace(reading.begin(), reading.end(), kUmlaut, 'u');
    return reading;
}

icu::UnicodeString Spelling(const std::string& name)
{
    const icu::UnicodeString text = Composed(name);
    icu::UnicodeString spelling;
    for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1))
    {
        const UChar32 character = text.char32At(at);
        const bool isBlank = spelling.isEmpty() || spelling.endsWith(u' ');
        if (IsWordPart(character))
            spelling.append(character);
        else if (IsDollarForS(text, at))
            spelling.append(u's');
        else if (!isBlank && character != u'\'' && character != u'’')
            spelling.append(u' ');
    }
    return spelling.trim();
}

Reader& Reader::Shared()
{
    static auto& reader = *new Reader;  // never destroyed: threads may read names while the process exits
    return reader;
}

Rules::Rules(icu::UnicodeString source, const char16_t* letters) : m_source(std::move(source))
{
    if (letters != nullptr) m_letters = SetOf(letters);
}

void Rules::Prepare()
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    m_rules.reset(icu::Transliterator::createFromRules(u"ipodnames", m_source, UTRANS_FORWARD, where, status));
    if (U_FAILURE(status)) m_rules.reset();
    if (m_rules != nullptr && m_letters.isEmpty()) m_rules->getSourceSet(m_letters);
    m_letters.freeze();
    m_source.remove();
}

void Rules::Apply(icu::UnicodeString& text)
{
    if (!m_source.isEmpty() && (m_letters.isEmpty() || m_letters.containsSome(text))) Prepare();
    if (m_rules != nullptr && m_letters.containsSome(text)) m_rules->transliterate(text);
}

// Each script leaves Latin letters to later ones. The transcriptions are those that people type; ICU's defaults are
// designed to be reversible.
Reader::Reader()
    : m_han(SetOf(u"[:Han:]")),
      m_simplification(u"::Hant-Hans;"),
      m_words{Rules(Joined({kWordsLikeNames, kHanWords, kShortNames, kSurnames})),
              Rules(Joined({kHanWords, kAllNames, kSurnames, kSurnamesLikeWords})), Rules(kHanWords)},
      m_character(kHanCharacter, u"[:Han:]"),
      m_scripts{Rules(kHangul, u"[:Hangul:]"),
                Rules(kKana, u"[[:Hiragana:][:Katakana:]]"),
                Rules(u"::[:Cyrillic:] Ukrainian-Latin/BGN;", u"[іїєґІЇЄҐ]"),
                Rules(u"::[:Cyrillic:] Russian-Latin/BGN;", u"[:Cyrillic:]"),
                Rules(u"::[:Greek:] Greek-Latin/UNGEGN;", u"[:Greek:]"),
                Rules(u"::[:Arabic:] Arabic-Latin/BGN;", u"[:Arabic:]"),
                Rules(u"::Any-Latin;", u"[[:L:]-[:Latin:]]"),
                Rules(u"::Latin-ASCII;", u"[:^ASCII:]")}
{
}

std::string Reader::Read(icu::UnicodeString spelling, Subject subject)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_han.containsSome(spelling)) ReadHan(spelling, subject);
    for (Rules& rules : m_scripts) rules.Apply(spelling);
    return Letters(spelling);
}

void Reader::ReadHan(icu::UnicodeString& text, Subject subject)
{
    m_simplification.Apply(text);
    m_words[static_cast<std::size_t>(subject)].Apply(text);
    icu::UnicodeString read;
    for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1))
    {
        const UChar32 character = text.char32At(at);
        if (m_han.contains(character))
            read.append(Syllable(character));
        else
            read.append(character == kSyllableMark ? u' ' : character);
    }
    text = read;
}

// Cached, because ICU is slow per character and lists repeat characters.
const icu::UnicodeString& Reader::Syllable(UChar32 character)
{
    const auto [entry, fresh] = m_syllables.try_emplace(character, character);
    if (!fresh) return entry->second;
    m_character.Apply(entry->second);
    return entry->second.insert(0, u' ').append(u' ');
}

std::string Reading(const std::string& name, Subject subject)
{
    return WithoutUmlauts(Reader::Shared().Read(Spelling(name), subject));
}
}  // namespace ipodnames
