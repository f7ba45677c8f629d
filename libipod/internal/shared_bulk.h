/// @file
/// Copying between the shared vectors and containers of the caller.
///
/// The other process may be faulty, or may rewrite a vector while it is read. Readers therefore load pointer and size
/// once, check them against the mapping, and copy from there.
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

/// Where the elements of @p vector may be: inside @p mapping if the vector itself is. Any other vector belongs to the
/// application, which redirected the exported variable; no other process can corrupt that one.
Mapping BoundsOf(const void* vector, const Mapping& mapping);

/// The elements of a shared vector at one moment.
template <class Element>
struct Snapshot
{
    const Element* begin = nullptr;
    std::size_t count = 0;
};

/// Empty if @p vector is null or any of its elements is outside @p mapping.
template <class Vector>
Snapshot<typename Vector::value_type> TakeSnapshot(const Vector* vector, const Mapping& mapping)
{
    if (vector == nullptr) return {};
    // Volatile locals prevent the compiler from reading shared memory a second time, after the check.
    const auto* const volatile beginOnce = vector->data();
    const volatile std::size_t countOnce = vector->size();
    const auto* const begin = beginOnce;
    const std::size_t count = countOnce;
    const char* const bytes = reinterpret_cast<const char*>(begin);
    if (bytes < mapping.begin || bytes >= mapping.end) return {};
    if (count > static_cast<std::size_t>(mapping.end - bytes) / sizeof(*begin)) return {};
    return {begin, count};
}

/// Runs an operation that acquires the lock inside a segment. If the lock times out, Boost reports only a generic
/// failure; callers are promised an exception that identifies the lock.
///
/// @throws boost::interprocess::lock_exception  the lock is held by a dead process, or is damaged
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

/// Replaces @p list with the names of a snapshot. A name ends at its first NUL, or after 256 bytes.
void CopyNames(const Snapshot<PlayListSongNameStr>& names, std::vector<std::string>& list);

/// Copies the bytes of a snapshot.
std::vector<unsigned char> CopyBytes(const Snapshot<unsigned char>& bytes);

/// Replaces the contents of @p shared with @p data, growing as if the bytes were appended one by one: the resulting
/// capacity and free memory, which the service shares, are the same, and so is the failure of a full segment.
///
/// @throws boost::interprocess::interprocess_exception  @p shared is null or its memory is outside @p mapping
/// @throws boost::interprocess::lock_exception          the segment's lock is held by a dead process
/// @throws boost::interprocess::bad_alloc               the segment is full; @p shared holds the bytes that fitted
void Replace(QBXByteVector* shared, const Mapping& mapping, const std::vector<unsigned char>& data);
}  // namespace qbx
