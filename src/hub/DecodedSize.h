#pragma once

#include <cstddef>
#include <string_view>

namespace sonavault {

/// The most that the decoded form of a line of JSON may take in memory, told from the line alone: a
/// short line may hold a large tree. Units: bytes
std::size_t decodedSize(std::string_view line);

/// A longer line than any that we send ourselves is not decoded when its decoded form could take
/// more than this: what it means can't be worth the memory of a program that records. Units: bytes
constexpr std::size_t kMostBytesOfADecodedLine = 67'108'864;

/// Whether a line that could take so much is decoded at all. What a well-behaved program may send
/// always is. Units: bytes
bool isWorthDecoding(std::string_view line, std::size_t decodedBytes);

}  // namespace sonavault
