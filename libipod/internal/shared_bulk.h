/// @file
/// Copying between the shared vectors and containers of the caller.
///
/// The other process may be broken, or may rewrite a vector while it is read. So a reader takes pointer and size
/// once, checks them against the mapping, and copies from there.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstddef>
#include <string>
#include <vector>

namespace qbx
{
/// The memory that a segment occupies in this process; empty until it is attached.
struct Mapping
{
    const char* begin = nullptr;
    const char* end = nullptr;
};

/// Where the elements of @p vector may lie: in @p mapping when the vector itself does. A vector elsewhere is the
/// application's own, which pointed the exported variable at it; no other process can spoil that one.
Mapping BoundsOf(const void* vector, const Mapping& mapping);

/// The elements of a shared vector at one moment.
template <class Element>
struct Snapshot
{
    const Element* begin = nullptr;
    std::size_t count = 0;
};

/// Empty when @p vector is null or its elements do not all lie inside @p mapping.
template <class Vector>
Snapshot<typename Vector::value_type> TakeSnapshot(const Vector* vector, const Mapping& mapping)
{
    if (vector == nullptr) return {};
    // Read through volatile locals: nobody may fetch them from shared memory a second time, after the check.
    const auto* const volatile beginOnce = vector->data();
    const volatile std::size_t countOnce = vector->size();
    const auto* const begin = beginOnce;
    const std::size_t count = countOnce;
    const char* const bytes = reinterpret_cast<const char*>(begin);
    if (bytes < mapping.begin || bytes >= mapping.end) return {};
    if (count > static_cast<std::size_t>(mapping.end - bytes) / sizeof(*begin)) return {};
    return {begin, count};
}

/// Does something that takes the lock inside a segment. Boost says of a lock that was not to be had within its
/// limit only that something failed; callers are promised the exception that names the lock.
///
/// @throws boost::interprocess::lock_exception  the lock is held by a process that died, or is damaged
template <class Action>
auto UnderSegmentLock(Action action)
{
    try
    {
        return action();
    }
    catch (const boost::interprocess::interprocess_exception& error)
    {
        if (error.get_error_code() == boost::interprocess::timeout_when_locking_error)
            throw boost::interprocess::lock_exception();
        throw;
    }
}

/// Replaces @p list by the names of a snapshot. A name ends at its first NUL, at the latest after 256 bytes.
void CopyNames(const Snapshot<PlayListSongNameStr>& names, std::vector<std::string>& list);

/// The bytes of a snapshot.
std::vector<unsigned char> CopyBytes(const Snapshot<unsigned char>& bytes);

/// Replaces the contents of @p shared by @p data, growing as if the bytes were appended one by one: capacity and
/// free memory of the segment, which the service shares, end the same, and so does a segment that is too full.
///
/// @throws boost::interprocess::interprocess_exception  @p shared is null or its memory does not lie inside @p mapping
/// @throws boost::interprocess::lock_exception          the segment's lock is held by a process that died
/// @throws boost::interprocess::bad_alloc               the segment is full; the bytes that fitted are there
void Replace(QBXByteVector* shared, const Mapping& mapping, const std::vector<unsigned char>& data);
}  // namespace qbx
