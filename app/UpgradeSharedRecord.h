#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// How many slots the ring of message codes has. One stays free, so that a full ring differs from an empty
/// one.
constexpr std::uint8_t kRingSlots = 25;
constexpr std::uint8_t kMaxOutstandingCodes = kRingSlots - 1;

/// Bytes of a text field, its final NUL included.
constexpr std::size_t kRecordTextSize = 50;
using RecordText = std::array<char, kRecordTextSize>;

/// The memory that the application shares with the upgrader: little-endian, at these offsets, whatever the
/// compiler. Every access but the first write of `uiCommand` happens under the named mutex.
struct UpgradeSharedRecord {
    std::uint8_t writeIndex;                          ///< 0 to 24: the slot that the next code will take.
    std::array<std::uint8_t, kRingSlots> messageRing; ///< One code a slot.
    RecordText printerVersion; ///< UTF-8, at most 49 bytes and a NUL, like the next five.
    RecordText printerDeviceName;
    RecordText printerRegion;
    RecordText packageVersion;
    RecordText packageDeviceName;
    RecordText packageRegion;
    std::array<std::uint8_t, 2> reserved;
    std::uint32_t packageSize; ///< Bytes.
    std::uint8_t uiCommand;    ///< The last command of the application; 0 for none.
    std::array<std::uint8_t, 3> reservedAtEnd;
};

static_assert(std::endian::native == std::endian::little, "the record is little-endian");
static_assert(offsetof(UpgradeSharedRecord, writeIndex) == 0);
static_assert(offsetof(UpgradeSharedRecord, messageRing) == 1);
static_assert(offsetof(UpgradeSharedRecord, printerVersion) == 26);
static_assert(offsetof(UpgradeSharedRecord, printerDeviceName) == 76);
static_assert(offsetof(UpgradeSharedRecord, printerRegion) == 126);
static_assert(offsetof(UpgradeSharedRecord, packageVersion) == 176);
static_assert(offsetof(UpgradeSharedRecord, packageDeviceName) == 226);
static_assert(offsetof(UpgradeSharedRecord, packageRegion) == 276);
static_assert(offsetof(UpgradeSharedRecord, reserved) == 326);
static_assert(offsetof(UpgradeSharedRecord, packageSize) == 328);
static_assert(offsetof(UpgradeSharedRecord, uiCommand) == 332);
static_assert(offsetof(UpgradeSharedRecord, reservedAtEnd) == 333);
static_assert(sizeof(UpgradeSharedRecord) == 336);
