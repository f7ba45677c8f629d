#include "events/format_value.h"

#include <glib.h>

#include <algorithm>
#include <iterator>

#include "output/text.h"

namespace ctl
{
namespace
{
using Arguments = std::vector<Json>;

int NumberIn(const Json& value)
{
    if (!value.is_number()) return 0;
    return static_cast<int>(std::clamp(value.get<double>(), -2147483648.0, 2147483647.0));
}

std::string Taken(gchar* text)
{
    std::string result = text;
    g_free(text);
    return result;
}

Json Default(const Arguments& arguments)
{
    return Shown(arguments[0]).empty() ? arguments[1] : arguments[0];
}

Json Duration(const Arguments& arguments)
{
    return arguments[0].is_number() ? Json(Clock(NumberIn(arguments[0]))) : Json();
}

Json Upper(const Arguments& arguments)
{
    return Taken(g_utf8_strup(Shown(arguments[0]).c_str(), -1));
}

Json Lower(const Arguments& arguments)
{
    return Taken(g_utf8_strdown(Shown(arguments[0]).c_str(), -1));
}

Json CutTo(const Arguments& arguments)
{
    return Cut(Shown(arguments[0]), NumberIn(arguments[1]));
}

// A number that is meant as a width has some sense left below this.
Json PadTo(const Arguments& arguments)
{
    constexpr int kWidest = 10000;
    return Pad(Shown(arguments[0]), std::min(NumberIn(arguments[1]), kWidest));
}

Json AsJson(const Arguments& arguments)
{
    return Dump(arguments[0]);
}

constexpr FormatFunction kFunctions[] = {
    {"cut", 2, CutTo},   {"default", 2, Default}, {"duration", 1, Duration}, {"json", 1, AsJson},
    {"lower", 1, Lower}, {"pad", 2, PadTo},       {"upper", 1, Upper},
};

int Order(const Json& one, const Json& other)
{
    if (!one.is_number() || !other.is_number()) return Shown(one).compare(Shown(other));
    const double left = one.get<double>();
    const double right = other.get<double>();
    return left < right ? -1 : static_cast<int>(left > right);
}
}  // namespace

bool IsTrue(const Json& value)
{
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number()) return value.get<double>() != 0;
    return !Shown(value).empty();
}

std::string Shown(const Json& value)
{
    if (value.is_null()) return {};
    return Printable(value.is_string() ? value.get<std::string>() : Dump(value));
}

bool Compare(const Json& one, const std::string& comparison, const Json& other)
{
    const int order = Order(one, other);
    if (comparison == "==") return order == 0;
    if (comparison == "!=") return order != 0;
    if (comparison == "<") return order < 0;
    if (comparison == "<=") return order <= 0;
    return comparison == ">" ? order > 0 : order >= 0;
}

const FormatFunction* FindFormatFunction(const std::string& name)
{
    const auto* const found = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                           [&](const FormatFunction& function) { return function.name == name; });
    return found == std::end(kFunctions) ? nullptr : found;
}

std::string FormatFunctionNames()
{
    std::string names;
    for (const FormatFunction& function : kFunctions) names += std::string(names.empty() ? "" : ", ") + function.name;
    return names;
}
}  // namespace ctl
