#include "names/hangul.h"

#include <optional>
#include <string>
#include <string_view>

namespace ipodkit
{
namespace
{
using Spelling = std::string_view;

constexpr int kFirstSyllable = 0xAC00;
constexpr int kLastSyllable = 0xD7A3;
constexpr int kVowels = 21;
constexpr int kFinals = 28;

// By their numbers within a syllable.
constexpr int kInitialG = 0;
constexpr int kInitialN = 2;
constexpr int kInitialD = 3;
constexpr int kInitialR = 5;
constexpr int kInitialM = 6;
constexpr int kInitialS = 9;
constexpr int kInitialSilent = 11;
constexpr int kInitialJ = 12;
constexpr int kVowelI = 20;
constexpr int kFinalNh = 6;
constexpr int kFinalD = 7;
constexpr int kFinalLt = 13;
constexpr int kFinalLh = 15;
constexpr int kFinalT = 25;
constexpr int kFinalH = 27;

constexpr Spelling kInitialLetters[] = {"g",  "kk", "n", "d",  "tt", "r", "m", "b", "pp", "s",
                                        "ss", "",   "j", "jj", "ch", "k", "t", "p", "h"};
constexpr Spelling kVowelLetters[kVowels] = {"a",  "ae", "ya", "yae", "eo", "e",  "yeo", "ye", "o",  "wa", "wae",
                                             "oe", "yo", "u",  "wo",  "we", "wi", "yu",  "eu", "ui", "i"};
// At the end of a syllable, and before a vowel.
constexpr Spelling kStops[kFinals] = {"",  "k", "k", "k", "n", "n", "n", "t",  "l", "k", "m", "l", "l", "l",
                                      "p", "l", "m", "p", "p", "t", "t", "ng", "t", "t", "k", "t", "p", "t"};
constexpr Spelling kLiaisons[kFinals] = {"",   "g",  "kk", "ks", "n",  "nj", "n", "d", "r",  "lg",
                                         "lm", "lb", "ls", "lt", "lp", "r",  "m", "b", "ps", "s",
                                         "ss", "ng", "j",  "ch", "k",  "t",  "p", ""};

struct Syllable
{
    int initial;
    int vowel;
    int final;
};

std::optional<Syllable> SyllableAt(const icu::UnicodeString& word, int at)
{
    if (at >= word.length()) return std::nullopt;
    const int unit = word.charAt(at);
    if (unit < kFirstSyllable || unit > kLastSyllable) return std::nullopt;
    const int index = unit - kFirstSyllable;
    return Syllable{index / kFinals / kVowels, index / kFinals % kVowels, index % kFinals};
}

Spelling Nasal(Spelling stop)
{
    if (stop == "k") return "ng";
    if (stop == "t") return "n";
    return stop == "p" ? "m" : stop;
}

// The consonants between two vowels.
struct Joint
{
    Spelling end;
    Spelling begin;
};

Joint BeforeVowel(int final, int vowel)
{
    if (vowel == kVowelI && final == kFinalD) return {"", "j"};
    if (vowel == kVowelI && final == kFinalT) return {"", "ch"};
    if (vowel == kVowelI && final == kFinalLt) return {"l", "ch"};
    return {"", kLiaisons[final]};
}

// The breath of a final goes over to what comes after it.
std::optional<Joint> Aspirated(int final, int initial)
{
    if (final != kFinalH && final != kFinalNh && final != kFinalLh) return std::nullopt;
    const Spelling end = final == kFinalH ? "" : kStops[final];
    if (initial == kInitialG) return Joint{end, "k"};
    if (initial == kInitialD) return Joint{end, "t"};
    if (initial == kInitialJ) return Joint{end, "ch"};
    if (initial == kInitialS) return Joint{end, "s"};
    return std::nullopt;
}

Joint BeforeLiquid(Spelling stop)
{
    if (stop.empty()) return {"", "r"};
    if (stop == "l" || stop == "n") return {"l", "l"};
    return {Nasal(stop), "n"};
}

Joint Joined(const Syllable& one, const Syllable& next)
{
    if (next.initial == kInitialSilent) return BeforeVowel(one.final, next.vowel);
    if (const auto joint = Aspirated(one.final, next.initial)) return *joint;
    const Spelling stop = kStops[one.final];
    if (next.initial == kInitialR) return BeforeLiquid(stop);
    if (next.initial == kInitialN && stop == "l") return {"l", "l"};
    const bool nasal = next.initial == kInitialN || next.initial == kInitialM;
    return {nasal ? Nasal(stop) : stop, kInitialLetters[next.initial]};
}

void Append(icu::UnicodeString& latin, Spelling letters)
{
    for (const char letter : letters) latin.append(static_cast<char16_t>(letter));
}

// Where the run ends.
int AppendRun(icu::UnicodeString& latin, const icu::UnicodeString& word, int at)
{
    auto syllable = SyllableAt(word, at);
    Append(latin, kInitialLetters[syllable->initial]);
    while (syllable)
    {
        Append(latin, kVowelLetters[syllable->vowel]);
        const auto next = SyllableAt(word, ++at);
        const Joint joint = next ? Joined(*syllable, *next) : Joint{kStops[syllable->final], ""};
        Append(latin, joint.end);
        Append(latin, joint.begin);
        syllable = next;
    }
    return at;
}
}  // namespace

icu::UnicodeString RomanizedHangul(const icu::UnicodeString& word)
{
    icu::UnicodeString latin;
    for (int at = 0; at < word.length();)
    {
        if (SyllableAt(word, at))
            at = AppendRun(latin, word, at);
        else
            latin.append(word.charAt(at++));
    }
    return latin;
}
}  // namespace ipodkit
