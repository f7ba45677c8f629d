/// @file
/// The two shared-memory segments and their ten named vectors, through which bulk data reaches applications.
///
/// Everything here is the contract between two processes that are built separately: a service maps the same
/// segments with the same types. Whichever process comes first creates segments and empty vectors, the other
/// finds them. The service fills a vector and then answers the call or emits the signal that announces it; a
/// vector is valid until the next request or event of its kind. Applications use the player's commands and
/// events, which copy the vectors, rather than these variables.
///
/// No lock guards the vectors. Their memory belongs to the segments and is never released by the library. The list
/// segment holds fewer than 20,480 names, all six lists together; the four byte vectors share 1 MiB. A vector that
/// has no room to grow throws `boost::interprocess::bad_alloc` in the process that fills it.
#pragma once

// A lock inside a segment may be held by a process that died. Without a limit everyone else waits forever.
#ifndef BOOST_INTERPROCESS_ENABLE_TIMEOUT_WHEN_LOCKING
#define BOOST_INTERPROCESS_ENABLE_TIMEOUT_WHEN_LOCKING
#endif

// Boost 1.87 moved the names of the objects in a segment. The service keeps them where Boost 1.56 does.
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

static_assert(sizeof(PlayListSongNameStr) == 256, "entries lie 256 bytes apart in the segment");
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

/// A page of names.
using QBXStringPageVector =
    boost::container::vector<PlayListSongNameStr,
                             boost::interprocess::allocator<PlayListSongNameStr, QBXSegmentManager>>;

/// Bytes of an image or of an accessory session.
using QBXByteVector =
    boost::container::vector<unsigned char, boost::interprocess::allocator<unsigned char, QBXSegmentManager>>;

// The layout of Boost 1.56, in words and locks, so that it is the same text for every word size. A version of Boost, or
// a macro, that lays something out in another way does not compile.
static_assert(sizeof(QBXStringPageVector) == 4 * sizeof(void*) && alignof(QBXStringPageVector) == sizeof(void*),
              "a vector is its allocator, the place of its entries, their number and its capacity");
static_assert(sizeof(QBXByteVector) == sizeof(QBXStringPageVector), "vectors of names and of bytes are laid out alike");
static_assert(alignof(QBXByteVector) == alignof(QBXStringPageVector),
              "vectors of names and of bytes are aligned alike");
static_assert(sizeof(QBXSegmentManager) == 15 * sizeof(void*) + 2 * sizeof(pthread_mutex_t),
              "the manager of a segment keeps its size, its free memory, two indexes and two process-shared locks");
static_assert(QBXSegmentManager::PayloadPerAllocation == sizeof(void*),
              "a block of memory costs the word that holds its size");
#if BOOST_VERSION > 105600  // which is the layout itself; later ones are held to it in what they do not document
static_assert(sizeof(boost::interprocess::ipcdetail::block_header<std::size_t>) == 2 * sizeof(void*),
              "before a named object lie its size, the length of its name, its alignment and its kind");
static_assert(
    std::is_base_of<boost::interprocess::ipcdetail::basic_managed_memory_impl<
                        char, QBXSegmentAlgorithm, boost::interprocess::iset_index, QBXSegmentAlgorithm::Alignment>,
                    QBXSharedSegment>::value,
    "the manager follows the state of the segment, which takes one unit of alignment");
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
              "on the head unit the type is the library's default");
#endif

constexpr char kListSegmentName[] = "ListVectorSharedMemory";      ///< name of the segment of the lists
constexpr char kBufferSegmentName[] = "BufferVectorSharedMemory";  ///< name of the segment of the bytes

// The sizes count only for the process that creates the segment.
constexpr std::size_t kListSegmentSize = 0x500000;    ///< size of a new segment of the lists, in bytes
constexpr std::size_t kBufferSegmentSize = 0x100000;  ///< size of a new segment of the bytes, in bytes

#pragma GCC visibility push(default)

// Attached when the first player object is built and mapped until the process ends; not to be used before.
extern QBXSharedSegment segment_list_vector;    ///< the segment of the lists
extern QBXSharedSegment segment_buffer_vector;  ///< the segment of the bytes

/// The vectors; null until the segments are attached. Filled by the service unless stated otherwise.
/// An application may point them at vectors of its own; commands and events use those then.
extern QBXStringPageVector* g_VecPlayingListShareMemory;       ///< page of the playing list
extern QBXStringPageVector* g_VecDBListShareMemory;            ///< page of the current database level
extern QBXStringPageVector* g_VecDBListPinyinShareMemory;      ///< the same in pinyin
extern QBXStringPageVector* g_VecUpdateListShareMemory;        ///< page of the list being updated
extern QBXStringPageVector* g_VecUpdateListPinyinShareMemory;  ///< the same in pinyin
extern QBXStringPageVector* g_VecDeviceListShareMemory;        ///< names of the attached devices
extern QBXByteVector* g_VecArtworkBufferShareMemory;           ///< image that was requested
extern QBXByteVector* g_VecArtworkChangeBufferShareMemory;     ///< image that an event announced
extern QBXByteVector* g_VecEapWriteBufferShareMemory;          ///< accessory bytes to send; filled by the library
extern QBXByteVector* g_VecEapReadBufferShareMemory;           ///< accessory bytes received

#pragma GCC visibility pop
