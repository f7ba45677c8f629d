#include "names/reader.h"

#include <unicode/uchar.h>

#include "names/reading.h"

namespace ipodkit
{
namespace
{
bool IsWordPart(UChar32 character)
{
    return (u_isalnum(character) || u_charType(character) == U_NON_SPACING_MARK) && !HanReader::IsHan(character);
}

// They join what they stand between: don't.
bool IsApostrophe(UChar32 character)
{
    return character == u'\'' || character == 0x2019;
}

// "A$AP", "Ke$ha": beside a letter it is one, unless an amount follows.
bool IsDollarForS(const icu::UnicodeString& name, int at)
{
    if (name.char32At(at) != u'$') return false;
    const bool letterBefore = at > 0 && u_isalpha(name.char32At(name.moveIndex32(at, -1)));
    const bool last = at + 1 == name.length();
    const UChar32 next = last ? u' ' : name.char32At(at + 1);
    return u_isalpha(next) || (letterBefore && !u_isdigit(next));
}
}  // namespace

Result<Reader> Reader::Make()
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const composition = icu::Normalizer2::getNFCInstance(status);
    auto han = HanReader::Make();
    if (!han || U_FAILURE(status))
        return tl::unexpected<Error>(Error{ErrorKind::BadArgument, "ICU has no rules from Chinese to Latin here"});
    return Reader(std::move(*han), *composition);
}

std::string Reader::Read(const icu::UnicodeString& name)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString composed = m_composition->normalize(name, status);
    const icu::UnicodeString& text = U_FAILURE(status) ? name : composed;
    std::string reading;
    for (int at = 0; at < text.length();)
    {
        const UChar32 character = text.char32At(at);
        if (HanReader::IsHan(character))
            at = m_han.Read(text, at, reading);
        else if (IsWordPart(character) || IsDollarForS(text, at))
            at = ReadWord(text, at, reading);
        else
            at = text.moveIndex32(at, 1);
    }
    return reading;
}

int Reader::ReadWord(const icu::UnicodeString& name, int at, std::string& reading)
{
    icu::UnicodeString word;
    for (; at < name.length(); at = name.moveIndex32(at, 1))
    {
        const UChar32 character = name.char32At(at);
        if (IsApostrophe(character)) continue;
        const bool dollar = IsDollarForS(name, at);
        if (!dollar && !IsWordPart(character)) break;
        word.append(dollar ? u's' : character);
    }
    AppendReading(reading, m_words.Read(word));
    return at;
}
}  // namespace ipodkit
