#pragma once

#include <cstddef>
#include <string_view>

namespace sonavault {

/// The most that the decoded form of a line of JSON may take in memory, told from the line alone: a
/// short line may hold a large tree. Units: bytes
std::size_t decodedSize(std::string_view line);

/// A line whose decoded form could take more than this is not decoded: what it means can't be worth
/// the memory of a program that records. Units: bytes
constexpr std::size_t kMostBytesOfADecodedLine = 67'108'864;

}  // namespace sonavault
