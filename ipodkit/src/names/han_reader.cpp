#include "names/han_reader.h"

#include <unicode/uscript.h>

#include <string_view>

#include "names/phrases.h"
#include "names/reading.h"

namespace ipodkit
{
namespace
{
// As long as a person's name is as a rule; longer ones are titles.
constexpr int kShortestName = 2;
constexpr int kLongestName = 3;

constexpr char16_t kCharacterRules[] = u"::Han-Latin;::NFC;::Lower;[üǖǘǚǜ]>V;::Latin-ASCII;";
constexpr char16_t kSurnameRules[] = u"::Han-Latin/Names;::NFC;::Lower;[üǖǘǚǜ]>V;::Latin-ASCII;";

int EndOfRun(const icu::UnicodeString& name, int at)
{
    while (at < name.length() && HanReader::IsHan(name.char32At(at))) at = name.moveIndex32(at, 1);
    return at;
}

std::u16string_view From(const icu::UnicodeString& run, int at)
{
    return {run.getBuffer() + at, static_cast<std::size_t>(run.length() - at)};
}

// "Softly, softly": what follows says how, not where.
bool IsAdverbial(const icu::UnicodeString& run, int at)
{
    const bool doubled = at >= 2 && run.charAt(at - 1) == run.charAt(at - 2);
    return doubled && run.charAt(at) == u'地' && at + 1 < run.length();
}
}  // namespace

bool HanReader::IsHan(UChar32 character)
{
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(character, &status) == USCRIPT_HAN;
}

std::optional<HanReader> HanReader::Make()
{
    auto characters = ParseRules(kCharacterRules);
    auto surnames = ParseRules(kSurnameRules);
    auto simplified = MakeRules(u"Hant-Hans");
    if (characters == nullptr || surnames == nullptr || simplified == nullptr) return std::nullopt;
    return HanReader(std::move(characters), std::move(surnames), std::move(simplified));
}

HanReader::HanReader(TransliteratorPtr characters, TransliteratorPtr surnames, TransliteratorPtr simplified)
    : m_characterRules(std::move(characters)),
      m_surnameRules(std::move(surnames)),
      m_simplification(std::move(simplified))
{
}

int HanReader::Read(const icu::UnicodeString& name, int at, std::string& reading)
{
    const int end = EndOfRun(name, at);
    const icu::UnicodeString run = Simplified(name.tempSubStringBetween(at, end));
    const int length = run.countChar32();
    const bool maybeName = length >= kShortestName && length <= kLongestName;
    for (int i = 0; i < run.length();)
    {
        const Phrase* const phrase = IsAdverbial(run, i) ? nullptr : PhraseAt(From(run, i));
        const UChar32 original = name.char32At(at + i);
        if (phrase != nullptr)
            AppendReading(reading, phrase->reading);
        else
            AppendReading(reading, i == 0 && maybeName ? ReadSurname(run.char32At(i)) : ReadCharacter(original));
        i = phrase != nullptr ? i + static_cast<int>(phrase->characters.size()) : run.moveIndex32(i, 1);
    }
    return end;
}

// Character by character, so that both stay in step. One that takes another number of units stays as it is.
icu::UnicodeString HanReader::Simplified(const icu::UnicodeString& run)
{
    icu::UnicodeString simplified;
    for (int at = 0; at < run.length(); at = run.moveIndex32(at, 1))
    {
        const UChar32 character = run.char32At(at);
        const auto [entry, fresh] = m_simplified.try_emplace(character, character);
        if (fresh)
        {
            icu::UnicodeString text(character);
            m_simplification->transliterate(text);
            if (text.length() == U16_LENGTH(character)) entry->second = text.char32At(0);
        }
        simplified.append(entry->second);
    }
    return simplified;
}

const std::string& HanReader::ReadCharacter(UChar32 character)
{
    const auto [entry, fresh] = m_characters.try_emplace(character);
    if (fresh) entry->second = Letters(*m_characterRules, icu::UnicodeString(character));
    return entry->second;
}

const std::string& HanReader::ReadSurname(UChar32 character)
{
    const auto [entry, fresh] = m_surnames.try_emplace(character);
    if (!fresh) return entry->second;
    const char* const known = character <= 0xFFFF ? SurnameReading(static_cast<char16_t>(character)) : nullptr;
    entry->second = known != nullptr ? known : Letters(*m_surnameRules, icu::UnicodeString(character));
    return entry->second;
}
}  // namespace ipodkit
