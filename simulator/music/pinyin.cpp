#include "music/pinyin.h"

#include "music/text.h"

namespace ipodsim
{
std::string Pinyin(const std::string& text, ipodnames::Subject subject)
{
    if (IsAscii(text)) return ToLowerAscii(text);
    std::string reading = ipodnames::Reading(text, subject);
    return reading.empty() ? text : reading;
}
}  // namespace ipodsim
