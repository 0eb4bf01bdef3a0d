// A checksum that tells a damaged or a different file from the one that is meant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zurt {

constexpr std::uint64_t kWordSumStart = 0xcbf29ce484222325;

/// Takes `size` bytes into the sum, in words of eight; the last word is filled with zeros. A change within any one word changes
/// the sum (G. Fowler, L. C. Noll, K.-P. Vo, the function FNV-1a, here by words).
inline std::uint64_t AddToWordSum(std::uint64_t sum, const void* bytes, std::size_t size) {
    const char* from = static_cast<const char*>(bytes);
    for (std::size_t at = 0; at < size; at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, from + at, size - at < 8 ? size - at : 8);
        sum = (sum ^ word) * 0x100000001b3;
    }
    return sum;
}

} // namespace zurt
