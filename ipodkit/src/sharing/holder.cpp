#include "sharing/holder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace ipodkit
{
namespace
{
namespace fs = std::filesystem;

// Names, in the order of Place.
constexpr const char* kNames[kPlaces] = {"VecPlayingListShareMemory",
                                         "VecDBListShareMemory",
                                         "VecDBListPinyinShareMemory",
                                         "VecUpdateListShareMemory",
                                         "VecUpdateListPinyinShareMemory",
                                         "VecDeviceListShareMemory",
                                         "level",
                                         "browse"};

struct Found
{
    Place place;
    pid_t process;
};

bool IsNumber(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

// A process may end at any time: iteration stops at an error, where a range-based loop would throw.
template <class Use>
void ForEachPathIn(const fs::path& folder, const Use& use)
{
    std::error_code error;
    for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error))
        use(each->path());
}

bool IsFile(const fs::path& path, const struct stat& file)
{
    struct stat status
    {
    };
    return stat(path.c_str(), &status) == 0 && status.st_ino == file.st_ino && status.st_dev == file.st_dev;
}

// "lock:	1: OFDLCK ADVISORY  WRITE -1 00:1b:5 1073741824 1073741824". The process ID of such locks is always -1.
void AddLock(const std::string& line, pid_t process, std::vector<Found>& found)
{
    std::istringstream words(line);
    std::string ignored;
    std::string type;
    off_t first = 0;
    words >> ignored >> ignored >> type >> ignored >> ignored >> ignored >> ignored >> first;
    for (int i = 0; type == "OFDLCK" && i < kPlaces; ++i)
    {
        const auto place = static_cast<Place>(i);
        if (first == LockOf(place)) found.push_back({place, process});
    }
}

// The kernel lists adjacent locks of one open file as one range, but no file holds two adjacent ones.
void AddLocksOf(const fs::path& process, const struct stat& file, std::vector<Found>& found)
{
    ForEachPathIn(process / "fd",
                  [&](const fs::path& open)
                  {
                      if (!IsFile(open, file)) return;
                      std::ifstream info(process / "fdinfo" / open.filename());
                      for (std::string line; std::getline(info, line);)
                          if (line.rfind("lock:", 0) == 0) AddLock(line, std::stoi(process.filename()), found);
                  });
}

std::vector<Found> AllLocks()
{
    std::vector<Found> found;
    struct stat file
    {
    };
    if (stat((std::string("/dev/shm/") + kLockedSegment).c_str(), &file) != 0) return found;
    ForEachPathIn("/proc",
                  [&](const fs::path& process)
                  {
                      if (IsNumber(process.filename())) AddLocksOf(process, file, found);
                  });
    return found;
}

std::string ProgramOf(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}
}  // namespace

std::string HolderOf(Place place)
{
    for (const Found& each : AllLocks())
        if (each.place == place)
            return "process " + std::to_string(each.process) + " (" + ProgramOf(each.process) + ")";
    return "another process";
}

std::vector<LockHolder> LockHolders()
{
    std::vector<LockHolder> holders;
    for (const Found& each : AllLocks())
        holders.push_back({kNames[static_cast<int>(each.place)], each.process, ProgramOf(each.process)});
    return holders;
}
}  // namespace ipodkit
