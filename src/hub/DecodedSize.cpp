#include "hub/DecodedSize.h"

namespace sonavault {
namespace {

// Rounded up from what Qt's JSON was seen to take: text is copied, in buffers of up to twice its
// size; a value is an element of 16 bytes in a list that grows by doubling; a list or an object
// that isn't empty is an allocation of its own besides.
constexpr std::size_t kPerByteOfText = 2;
constexpr std::size_t kPerValue = 32;
constexpr std::size_t kPerContainer = 192;

}  // namespace

// Marks that stand within a text count too: to tell them apart would take a parser.
std::size_t decodedSize(std::string_view line) {
    std::size_t values = 1;
    std::size_t containers = 0;
    for (const char c : line) {
        values += static_cast<std::size_t>(c == ',') + static_cast<std::size_t>(c == ':');
        containers += static_cast<std::size_t>(c == '[') + static_cast<std::size_t>(c == '{');
    }
    return line.size() * kPerByteOfText + values * kPerValue + containers * kPerContainer;
}

}  // namespace sonavault
