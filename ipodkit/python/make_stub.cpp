// Prints the type stub of the Python package: make-stub HAND_WRITTEN >__init__.pyi. It generates enumerations, values,
// and events from the field tables; the rest comes from the file HAND_WRITTEN.
#include <ipodkit/commands.h>
#include <ipodkit/event.h>
#include <ipodkit/player_state.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

namespace ipodkit
{
namespace
{
template <class T>
struct Typed
{
    static std::string Name()
    {
        if constexpr (kHasNames<T>)
            return EnumNames<T>::type;
        else if constexpr (kHasRows<T>)
            return Rows<T>::type;
        else if constexpr (std::is_same_v<T, bool>)
            return "bool";
        else if constexpr (std::is_integral_v<T>)
            return "int";
        else
            return "str";
    }
};
template <>
struct Typed<std::vector<unsigned char>>
{
    static std::string Name() { return "builtins.bytes"; }
};
template <>
struct Typed<PicturePtr>
{
    static std::string Name() { return "Picture | None"; }
};
template <>
struct Typed<PhoneCall::Time>
{
    static std::string Name() { return "datetime.datetime"; }
};
template <>
struct Typed<std::chrono::milliseconds>
{
    static std::string Name() { return "datetime.timedelta"; }
};
template <class T>
struct Typed<std::optional<T>>
{
    static std::string Name() { return Typed<T>::Name() + " | None"; }
};
template <class T>
struct Typed<Known<T>> : Typed<std::optional<T>>
{
};
template <>
struct Typed<Known<PicturePtr>> : Typed<PicturePtr>
{
};
template <class Key, class T>
struct Typed<std::map<Key, T>>
{
    static std::string Name() { return "dict[" + Typed<Key>::Name() + ", " + Typed<T>::Name() + "]"; }
};

std::string Constant(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char each)
                   { return std::isalnum(each) != 0 ? static_cast<char>(std::toupper(each)) : '_'; });
    return name;
}

void PrintProperty(const std::string& name, const std::string& type, const std::string& meaning)
{
    std::cout << "    @property\n    def " << name << "(self) -> " << type << ":\n        \"\"\"" << meaning
              << ".\"\"\"\n";
}

template <class T>
void PrintProperties()
{
    ForEachRow<T>(
        [](const auto& row)
        {
            using Field = FieldType<T, std::decay_t<decltype(row)>>;
            if constexpr (kHasRows<Field>)
            {
                if (*row.name == '\0') return PrintProperties<Field>();
            }
            PrintProperty(row.name, Typed<Field>::Name(), row.meaning);
        });
}

template <class T>
void PrintClass()
{
    std::cout << "\nclass " << Rows<T>::type << ":\n";
    PrintProperties<T>();
}

template <class E>
void PrintEnumeration()
{
    std::cout << "\nclass " << EnumNames<E>::type << "(_Enumeration):\n";
    for (const char* name : EnumNames<E>::names)
        std::cout << "    " << Constant(name) << ": ClassVar[" << EnumNames<E>::type << "]\n";
}

template <class E>
void PrintEvent()
{
    PrintClass<E>();
    if constexpr (std::is_same_v<E, ArtworkChanged>)
    {
        PrintProperty("available", "bool", "Whether the track has artwork");
        PrintProperty("picture", "Picture | None", "The image");
    }
}

template <class... Events>
void PrintEvents(const std::variant<Events...>*)
{
    (PrintEvent<Events>(), ...);
    std::string all;
    ((all += (all.empty() ? "" : " | ") + std::string(Rows<Events>::type)), ...);
    std::cout << "\nEvent: TypeAlias = " << all << "\n";
}

void PrintFields()
{
    std::cout << "\nclass Field(_Enumeration):\n    CONNECTION: ClassVar[Field]\n";
    ForEachRow<PlayerState>([](const auto& row)
                            { std::cout << "    " << Constant(row.name) << ": ClassVar[Field]\n"; });
}

template <class... T>
void PrintClasses()
{
    (PrintClass<T>(), ...);
}

template <class... E>
void PrintEnumerations()
{
    (PrintEnumeration<E>(), ...);
}
}  // namespace
}  // namespace ipodkit

int main(int argc, char** argv)
{
    using namespace ipodkit;
    if (argc != 2) return std::cerr << "usage: make-stub HAND_WRITTEN\n", 2;
    std::cout << std::ifstream(argv[1]).rdbuf();
    PrintEnumerations<PlayStatus, Shuffle, Repeat, Winding, DeviceStatus, LocationStatus, ChargingStatus, CallStatus,
                      CallDirection, CallService, CallEnd, Unknown>();
    PrintFields();
    PrintClasses<Track, PhoneCall, Battery, CarPlayDevice, WirelessCarPlay, PairingInfo, PlayPosition>();
    PrintEvents(static_cast<const Event*>(nullptr));
    PrintClass<Picture>();
    PrintProperty("data", "builtins.bytes", "The image");
    PrintClass<Position>();
    std::cout << "    def now(self) -> datetime.timedelta: ...\n";
    PrintClass<PlayerState>();
    PrintProperty("version", "int", "Increases by 1 with each published state");
    PrintProperty("phase", "Phase", "State of the connection to the service");
    PrintProperty("generation", "int", "Number of times the service has appeared");
    PrintProperty("remembered", "frozenset[Field]", "The fields that are known only from the companion daemon");
    std::cout << "    def why(self, field: Field) -> Unknown | None: ...\n";
    return std::cout.flush() ? 0 : 1;
}
