#include <ipodkit/player_state.h>

#include <algorithm>

namespace ipodkit
{
std::string detail::NameOrNumber(const char* const* names, std::size_t count, int value)
{
    const auto index = static_cast<std::size_t>(value);
    return value >= 0 && index < count ? names[index] : "unknown:" + std::to_string(value);
}

const char* Name(Phase phase)
{
    static constexpr const char* names[] = {"Absent", "Connecting", "Ready", "Lost"};
    return names[static_cast<int>(phase)];
}

std::string Name(Field field)
{
    std::string name = "connection";
    ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if (row.field == field) name = row.name;
        });
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

std::string Names(Fields fields)
{
    std::string names;
    for (std::uint32_t bit = 1; bit <= static_cast<std::uint32_t>(Field::AccessorySessions); bit <<= 1)
        if (const auto field = static_cast<Field>(bit); fields.Has(field))
            names += (names.empty() ? "" : ", ") + Name(field);
    return names;
}

std::chrono::milliseconds Position::At(std::chrono::steady_clock::time_point now) const
{
    if (!advancing || now <= at) return position;
    const auto reached = position + std::chrono::duration_cast<std::chrono::milliseconds>(now - at);
    return duration.count() > 0 ? std::min(reached, std::max(duration, position)) : reached;
}

bool operator==(const Position& one, const Position& other)
{
    return one.position == other.position && one.duration == other.duration && one.at == other.at &&
           one.advancing == other.advancing;
}

std::optional<Unknown> PlayerState::Why(Field field) const
{
    std::optional<Unknown> why;
    ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if constexpr (kIsKnown<FieldType<PlayerState, std::decay_t<decltype(row)>>>)
                if (row.field == field && !(this->*row.get)) why = (this->*row.get).Why();
        });
    return why;
}

Fields Differences(const PlayerState& one, const PlayerState& other)
{
    Fields fields;
    const bool sameConnection = one.phase == other.phase && one.generation == other.generation &&
                                one.service == other.service && one.error == other.error &&
                                one.missing == other.missing;
    if (!sameConnection) fields = Field::Connection;
    ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if (!(one.*row.get == other.*row.get)) fields = fields | row.field;
        });
    return fields | one.remembered.Without(other.remembered) | other.remembered.Without(one.remembered);
}
}  // namespace ipodkit
