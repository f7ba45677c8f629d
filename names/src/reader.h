/// @file
/// How names are read.
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
/// Stands for the ü of a Chinese syllable, which people type as v or as u. Nothing else in a reading is a capital.
inline constexpr char kUmlaut = 'V';

std::string WithoutUmlauts(std::string reading);

/// Returns the letters, digits, and marks of a name, composed, with single blanks for everything between them.
/// Apostrophes are dropped (dont), and a dollar sign beside a letter is an s.
icu::UnicodeString Spelling(const std::string& name);

/// Rules of a transliterator, prepared when they are needed first. Rules that the system's ICU lacks change nothing.
class Rules
{
public:
    /// To texts with some of these letters; by default, with some that the rules change.
    explicit Rules(icu::UnicodeString source, const char16_t* letters = nullptr);

    void Apply(icu::UnicodeString& text);

private:
    void Prepare();

    icu::UnicodeString m_source;  // empty once it was parsed
    icu::UnicodeSet m_letters;
    std::unique_ptr<const icu::Transliterator> m_rules;
};

/// Any thread may use it.
class Reader
{
public:
    /// The reader of this process: its rules take time to prepare, and it remembers what it has read.
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
