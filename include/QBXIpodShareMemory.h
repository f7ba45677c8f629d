/// @file
/// The two shared-memory segments and their ten named vectors, through which bulk data reaches applications.
///
/// Everything here is the contract between two processes that are built separately: a service maps the same
/// segments with the same types. The process that starts first creates the segments and the empty vectors; the other
/// one finds them. The service fills a vector and then answers the call or emits the signal that announces it; a vector
/// is valid until the next request or event of its kind. Applications use the player's commands and events, which copy
/// the vectors, rather than these variables.
///
/// No lock guards the vectors. Their memory belongs to the segments and is never released by the library. The list
/// segment holds fewer than 20,480 names, all six lists together; the four byte vectors share 1 MiB. A vector that
/// cannot grow throws `boost::interprocess::bad_alloc` in the process that fills it.
#pragma once

// A process may die holding a lock inside a segment. Without a timeout every other process would wait forever.
#ifndef BOOST_INTERPROCESS_ENABLE_TIMEOUT_WHEN_LOCKING
#define BOOST_INTERPROCESS_ENABLE_TIMEOUT_WHEN_LOCKING
#endif

// Boost 1.87 changed where a segment stores the names of its objects. The service uses the layout of Boost 1.56.
#ifndef BOOST_INTERPROCESS_SEGMENT_MANAGER_ABI
#define BOOST_INTERPROCESS_SEGMENT_MANAGER_ABI 1
#elif BOOST_INTERPROCESS_SEGMENT_MANAGER_ABI != 1
#error "include QBXIpodShareMemory.h before Boost.Interprocess, or define BOOST_INTERPROCESS_SEGMENT_MANAGER_ABI as 1"
#endif

#include <pthread.h>

#include <boost/container/vector.hpp>
#include <boost/interprocess/allocators/allocator.hpp>
#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/version.hpp>

#include <cstddef>
#include <type_traits>

/// One entry of a list: a NUL-terminated name. The bytes are passed through as the service wrote them.
struct PlayListSongNameStr
{
    char name[256];  ///< ends at the first NUL
};

static_assert(sizeof(PlayListSongNameStr) == 256, "entries are 256 bytes apart in the segment");
static_assert(std::is_trivially_copyable<PlayListSongNameStr>::value, "entries are shared between processes");

/// Offset pointer inside a segment, as wide as a pointer: 32 bits on the head unit, 64 on a desktop.
using QBXSegmentPointer = boost::interprocess::offset_ptr<void, std::ptrdiff_t, std::size_t, 0>;

/// Memory algorithm of a segment.
using QBXSegmentAlgorithm =
    boost::interprocess::rbtree_best_fit<boost::interprocess::mutex_family, QBXSegmentPointer, 0>;

/// A segment as both processes map it.
using QBXSharedSegment =
    boost::interprocess::basic_managed_shared_memory<char, QBXSegmentAlgorithm, boost::interprocess::iset_index>;

/// Allocates inside a segment and finds its named vectors.
using QBXSegmentManager =
    boost::interprocess::segment_manager<char, QBXSegmentAlgorithm, boost::interprocess::iset_index>;

/// A page of names, one entry per name.
using QBXStringPageVector =
    boost::container::vector<PlayListSongNameStr,
                             boost::interprocess::allocator<PlayListSongNameStr, QBXSegmentManager>>;

/// Bytes of an image or of an accessory session.
using QBXByteVector =
    boost::container::vector<unsigned char, boost::interprocess::allocator<unsigned char, QBXSegmentManager>>;

// The layout of Boost 1.56, expressed in words and locks to cover every word size. A Boost version or a macro that
// changes the layout fails to compile.
static_assert(sizeof(QBXStringPageVector) == 4 * sizeof(void*) && alignof(QBXStringPageVector) == sizeof(void*),
              "a vector consists of its allocator, a pointer to its entries, their number, and its capacity");
static_assert(sizeof(QBXByteVector) == sizeof(QBXStringPageVector),
              "vectors of names and of bytes have the same layout");
static_assert(alignof(QBXByteVector) == alignof(QBXStringPageVector),
              "vectors of names and of bytes have the same alignment");
static_assert(sizeof(QBXSegmentManager) == 15 * sizeof(void*) + 2 * sizeof(pthread_mutex_t),
              "a segment manager consists of its size, its free memory, two indexes, and two process-shared locks");
static_assert(QBXSegmentManager::PayloadPerAllocation == sizeof(void*),
              "a memory block is preceded by one word that holds its size");
#if BOOST_VERSION > 105600  // later versions must match its undocumented internals
static_assert(sizeof(boost::interprocess::ipcdetail::block_header<std::size_t>) == 2 * sizeof(void*),
              "a named object is preceded by its size, the length of its name, its alignment, and its kind");
static_assert(
    std::is_base_of<boost::interprocess::ipcdetail::basic_managed_memory_impl<
                        char, QBXSegmentAlgorithm, boost::interprocess::iset_index, QBXSegmentAlgorithm::Alignment>,
                    QBXSharedSegment>::value,
    "the manager follows the segment's state, which occupies one unit of alignment");
#endif

#if defined(__SIZEOF_POINTER__) && __SIZEOF_POINTER__ == 4
static_assert(
    std::is_same<
        QBXSharedSegment,
        boost::interprocess::basic_managed_shared_memory<
            char,
            boost::interprocess::rbtree_best_fit<boost::interprocess::mutex_family,
                                                 boost::interprocess::offset_ptr<void, int, unsigned int, 0>, 0>,
            boost::interprocess::iset_index>>::value,
    "the service on the head unit maps exactly this type");
static_assert(std::is_same<QBXSharedSegment, boost::interprocess::managed_shared_memory>::value,
              "on the head unit the type is Boost's default");
#endif

constexpr char kListSegmentName[] = "ListVectorSharedMemory";      ///< name of the list segment
constexpr char kBufferSegmentName[] = "BufferVectorSharedMemory";  ///< name of the byte segment

// The sizes apply only in the process that creates the segment.
constexpr std::size_t kListSegmentSize = 0x500000;    ///< size of a new list segment, in bytes
constexpr std::size_t kBufferSegmentSize = 0x100000;  ///< size of a new byte segment, in bytes

#pragma GCC visibility push(default)

// Attached when the first player object is built, and mapped until the process ends. Do not use them earlier.
extern QBXSharedSegment segment_list_vector;    ///< the list segment
extern QBXSharedSegment segment_buffer_vector;  ///< the byte segment

/// The vectors; null until the segments are attached. Filled by the service unless stated otherwise.
/// An application may point them to its own vectors; commands and events then use those.
extern QBXStringPageVector* g_VecPlayingListShareMemory;       ///< page of the playing list
extern QBXStringPageVector* g_VecDBListShareMemory;            ///< page of the current database level
extern QBXStringPageVector* g_VecDBListPinyinShareMemory;      ///< the same in pinyin
extern QBXStringPageVector* g_VecUpdateListShareMemory;        ///< page of the list being updated
extern QBXStringPageVector* g_VecUpdateListPinyinShareMemory;  ///< the same in pinyin
extern QBXStringPageVector* g_VecDeviceListShareMemory;        ///< names of the attached devices
extern QBXByteVector* g_VecArtworkBufferShareMemory;           ///< requested image
extern QBXByteVector* g_VecArtworkChangeBufferShareMemory;     ///< image announced by an event
extern QBXByteVector* g_VecEapWriteBufferShareMemory;          ///< accessory bytes to send; filled by the library
extern QBXByteVector* g_VecEapReadBufferShareMemory;           ///< accessory bytes received

#pragma GCC visibility pop
