/// @file
/// Computes readings of names.
#pragma once

#include <ipodnames/reading.h>
#include <unicode/translit.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace ipodnames
{
/// Represents the ü of a Chinese syllable, which people type as v or as u. No other character of a reading is upper
/// case.
inline constexpr char kUmlaut = 'V';

std::string WithoutUmlauts(std::string reading);

/// Returns the letters, digits, and marks of a name, composed, with single blanks for everything between them.
/// Apostrophes are dropped (dont), and a dollar sign beside a letter is an s.
icu::UnicodeString Spelling(const std::string& name);

/// Rules of a transliterator, prepared on first use. Rules that the system's ICU lacks have no effect.
class Rules
{
public:
    /// Applies to texts with any of these letters; by default, with any that the rules change.
    explicit Rules(icu::UnicodeString source, const char16_t* letters = nullptr);

    void Apply(icu::UnicodeString& text);

private:
    void Prepare();

    icu::UnicodeString m_source;  // empty after parsing
    icu::UnicodeSet m_letters;
    std::unique_ptr<const icu::Transliterator> m_rules;
};

/// Thread-safe.
class Reader
{
public:
    /// The reader of this process, shared because its rules are slow to prepare and it caches results.
    static Reader& Shared();

    /// Returns the reading of a Spelling() as Reading() does, but with kUmlaut.
    std::string Read(icu::UnicodeString spelling, Subject subject);

private:
    Reader();
    void ReadHan(icu::UnicodeString& text, Subject subject);
    const icu::UnicodeString& Syllable(UChar32 character);

    std::mutex m_mutex;
    icu::UnicodeSet m_han;
    Rules m_simplification;
    std::array<Rules, 3> m_words;  // by subject
    Rules m_character;
    std::unordered_map<UChar32, icu::UnicodeString> m_syllables;
    std::array<Rules, 8> m_scripts;
};
}  // namespace ipodnames
