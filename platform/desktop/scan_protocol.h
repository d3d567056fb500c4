#pragma once
// What quillane-scan writes to its socket: messages of a head and as many bytes as it announces.
// It is given its orders as arguments:
//   quillane-scan list
//   quillane-scan choices NAME
//   quillane-scan acquire NAME [option=value ...]    options by the names that drivers give them
// The end of what it can read of the socket asks it to stop.
#include <cstdint>

namespace quillane::scan {

inline constexpr int kScanSocket = 3;                   ///< the descriptor it is started with
inline constexpr std::uint32_t kMark = 0x4E414353;      ///< at the beginning of every message
inline constexpr std::uint32_t kMostMessage = 1u << 20; ///< bytes behind a head

enum class Kind : std::uint32_t {
    Source = 1, ///< four texts, each ended by a zero byte: name, vendor, model, kind
    Choice = 2, ///< two such texts: what, and a value of it
    Page = 3,   ///< a PageHead: rows follow
    Rows = 4,   ///< bytes of rows, of any number
    Alive = 5,  ///< nothing new
    Done = 6,   ///< the last message
    Failed = 7, ///< a FailedHead and a text; the last message
};

struct Head {
    std::uint32_t mark = kMark;
    Kind kind = Kind::Alive;
    std::uint32_t size = 0; ///< bytes that follow
};

struct PageHead {
    std::int32_t channels = 0, depth = 0, width = 0;
    std::int32_t lines = -1; ///< -1: as many as come
    std::int64_t bytesPerLine = 0;
    double xResolution = 0, yResolution = 0;
};

enum class Trouble : std::int32_t {
    Other = 0,
    NoSuchSource = 1,
    Busy = 2,
    Denied = 3,
    Jammed = 4,
    NoPaper = 5,
    CoverOpen = 6,
    Transfer = 7,
    NoMemory = 8,
    Cancelled = 9,
    NoSuchOption = 10, ///< the text names it
    TooLarge = 11,
};

struct FailedHead {
    Trouble trouble = Trouble::Other;
};

} // namespace quillane::scan
