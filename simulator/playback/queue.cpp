#include "playback/queue.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <string>
#include <utility>

namespace ipodsim
{
void Queue::Fill(TrackList tracks, std::size_t start)
{
    m_tracks = std::move(tracks);
    Order(start);
}

bool Queue::Jump(int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_tracks.size()) return false;
    const auto place = std::find(m_order.begin(), m_order.end(), static_cast<std::size_t>(index));
    m_at = static_cast<std::size_t>(place - m_order.begin());
    return true;
}

bool Queue::Next()
{
    if (Empty()) return false;
    const bool last = m_at + 1 == m_order.size();
    if (last && m_repeat == IPOD_REPEAT_OFF) return false;
    m_at = last ? 0 : m_at + 1;
    return true;
}

bool Queue::Previous()
{
    if (Empty()) return false;
    if (m_at == 0 && m_repeat == IPOD_REPEAT_OFF) return false;
    m_at = (m_at == 0 ? m_order.size() : m_at) - 1;
    return true;
}

bool Queue::Advance()
{
    if (Empty()) return false;
    if (m_repeat == IPOD_REPEAT_ONE || Next()) return true;
    m_at = 0;
    return false;
}

void Queue::SetShuffle(iPodPlayerShuffleStatus mode)
{
    m_shuffle = mode;
    if (!Empty()) Order(Index());
}

void Queue::Order(std::size_t start)
{
    m_order.resize(m_tracks.size());
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
    m_at = m_shuffle == IPOD_SHUFFLE_OFF ? start : 0;
    if (m_shuffle == IPOD_SHUFFLE_SONGS) ShuffleSongs(start);
    if (m_shuffle == IPOD_SHUFFLE_ALBUMS) ShuffleAlbums(start);
}

void Queue::ShuffleSongs(std::size_t start)
{
    if (Empty()) return;
    std::swap(m_order.front(), m_order[start]);
    std::shuffle(m_order.begin() + 1, m_order.end(), m_random);
}

// The album of the start entry comes first, beginning with that entry; its earlier entries move to the end of the
// album.
void Queue::ShuffleAlbums(std::size_t start)
{
    if (Empty()) return;
    std::map<std::string, std::vector<std::size_t>> albums;
    for (const std::size_t index : m_order) albums[m_tracks[index]->album].push_back(index);
    auto first = albums.extract(m_tracks[start]->album);
    auto& opening = first.mapped();
    std::rotate(opening.begin(), std::find(opening.begin(), opening.end(), start), opening.end());
    std::vector<std::vector<std::size_t>> others;
    others.reserve(albums.size());
    for (auto& [name, songs] : albums) others.push_back(std::move(songs));
    std::shuffle(others.begin(), others.end(), m_random);
    m_order = std::move(opening);
    for (const auto& songs : others) m_order.insert(m_order.end(), songs.begin(), songs.end());
}
}  // namespace ipodsim
