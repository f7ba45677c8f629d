#include "filing.h"

#include <unicode/sortkey.h>
#include <unicode/tblcoll.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <stdexcept>

#include "reader.h"

namespace ipodnames
{
namespace
{
constexpr char kLastRank = '\xFF';
constexpr char kOther[] = "#";

std::vector<UScriptCode> ScriptsOf(const icu::Locale& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::vector<UScriptCode> scripts(8);
    const int count = uscript_getCode(locale.getName(), scripts.data(), static_cast<int>(scripts.size()), &status);
    scripts.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(count));
    scripts.insert(scripts.end(), {USCRIPT_LATIN, USCRIPT_COMMON});
    return scripts;
}

// The script of the first letter; USCRIPT_COMMON without one.
UScriptCode ScriptOf(const icu::UnicodeString& text)
{
    UErrorCode status = U_ZERO_ERROR;
    for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1))
        if (u_isalpha(text.char32At(at))) return uscript_getScript(text.char32At(at), &status);
    return USCRIPT_COMMON;
}

std::string Utf8(const icu::UnicodeString& text)
{
    std::string bytes;
    return text.toUTF8String(bytes);
}
}  // namespace

Filing::Filing(const std::string& locale, const std::vector<std::string>& articles)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale place = icu::Locale::createCanonical(locale.c_str());
    icu::AlphabeticIndex index(place, status);
    m_index.reset(index.addLabels(icu::Locale::getEnglish(), status).buildImmutableIndex(status));
    if (U_FAILURE(status))
        throw std::runtime_error("cannot sort names: ICU reports " + std::string(u_errorName(status)));
    m_collator.reset(index.getCollator().clone());
    m_scripts = ScriptsOf(place);
    const bool byPinyin = Utf8(m_index->getBucket(m_index->getBucketIndex(u"周", status))->getLabel()) == "Z";
    if (byPinyin) m_scripts.erase(std::remove(m_scripts.begin(), m_scripts.end(), USCRIPT_HAN), m_scripts.end());
    for (const std::string& article : articles) m_articles.push_back(Spelling(article).append(u' '));
}

Filed Filing::File(const icu::UnicodeString& spelling, const std::string& reading) const
{
    const bool asWritten = std::count(m_scripts.begin(), m_scripts.end(), ScriptOf(spelling)) > 0;
    icu::UnicodeString text = asWritten ? WithoutArticle(spelling) : icu::UnicodeString::fromUTF8(reading);
    if (!asWritten) text.findAndReplace(icu::UnicodeString(char16_t{kUmlaut}), icu::UnicodeString(u'ü'));
    UErrorCode status = U_ZERO_ERROR;
    const int index = m_index->getBucketIndex(text, status);
    const auto* const bucket = m_index->getBucket(index);
    const bool isLetter = bucket != nullptr && bucket->getLabelType() == U_ALPHAINDEX_NORMAL;
    const char ranks[] = {isLetter ? static_cast<char>(index) : kLastRank, asWritten ? '\0' : '\1'};
    return {std::string(ranks, 2) + SortKey(text) + SortKey(spelling), isLetter ? Utf8(bucket->getLabel()) : kOther};
}

icu::UnicodeString Filing::WithoutArticle(const icu::UnicodeString& spelling) const
{
    for (const icu::UnicodeString& article : m_articles)
        if (spelling.caseCompare(0, article.length(), article, U_FOLD_CASE_DEFAULT) == 0)
            return icu::UnicodeString(spelling, article.length());
    return spelling;
}

std::string Filing::SortKey(const icu::UnicodeString& text) const
{
    UErrorCode status = U_ZERO_ERROR;
    icu::CollationKey key;
    m_collator->getCollationKey(text, key, status);
    int32_t length = 0;
    const uint8_t* const bytes = key.getByteArray(length);
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}
}  // namespace ipodnames
