#include "names/reading.h"

namespace ipodkit
{
std::shared_ptr<icu::Transliterator> MakeRules(const char16_t* id)
{
    UErrorCode status = U_ZERO_ERROR;
    std::shared_ptr<icu::Transliterator> rules(icu::Transliterator::createInstance(id, UTRANS_FORWARD, status));
    return U_FAILURE(status) ? nullptr : rules;
}

std::shared_ptr<icu::Transliterator> ParseRules(const char16_t* rules)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    std::shared_ptr<icu::Transliterator> parsed(
        icu::Transliterator::createFromRules(u"ipodkit", rules, UTRANS_FORWARD, where, status));
    return U_FAILURE(status) ? nullptr : parsed;
}

std::string Letters(const icu::Transliterator& rules, icu::UnicodeString text)
{
    rules.transliterate(text);
    std::string letters;
    for (int i = 0; i < text.length(); ++i)
    {
        const char16_t unit = text.charAt(i);
        const bool typed = (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9');
        if (typed || unit == kUmlaut) letters += static_cast<char>(unit);
    }
    return letters;
}

void AppendReading(std::string& reading, const std::string& token)
{
    if (token.empty()) return;
    if (!reading.empty()) reading += ' ';
    reading += token;
}
}  // namespace ipodkit
