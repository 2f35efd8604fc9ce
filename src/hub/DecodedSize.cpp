#include "hub/DecodedSize.h"

#include "hub/Envelope.h"

namespace sonavault {
namespace {

// Rounded up from what Qt's JSON was seen to take: text is copied, in buffers of up to twice its
// size; a value is an element of 16 bytes in a list that grows by doubling; a list or an object
// that isn't empty is an allocation of its own besides.
constexpr std::size_t kPerByteOfText = 2;
constexpr std::size_t kPerValue = 32;
constexpr std::size_t kPerContainer = 192;

/// What a line holds, one byte after the other.
class Tally {
  public:
    void take(char c) {
        if (inText_) return takeOfText(c);
        if (c == ' ' || c == '\t' || c == '\r') return;
        inText_ = c == '"';
        if (c == ',' || c == ':') ++values_;
        if (c == '[' || c == '{') ++containers_;
        // An empty one is no more than a plain value.
        if ((c == ']' && before_ == '[') || (c == '}' && before_ == '{')) --containers_;
        before_ = c;
    }

    std::size_t bytes() const { return values_ * kPerValue + containers_ * kPerContainer; }

  private:
    void takeOfText(char c) {
        inText_ = escaped_ || c != '"';
        escaped_ = !escaped_ && c == '\\';
    }

    std::size_t values_ = 1;
    std::size_t containers_ = 0;
    char before_ = '\0';  // the last byte outside a text that was no blank
    bool inText_ = false;
    bool escaped_ = false;
};

}  // namespace

std::size_t decodedSize(std::string_view line) {
    Tally tally;
    for (const char c : line) tally.take(c);
    return line.size() * kPerByteOfText + tally.bytes();
}

bool isWorthDecoding(std::string_view line, std::size_t decodedBytes) {
    return line.size() < kMaxEnvelopeBytes || decodedBytes <= kMostBytesOfADecodedLine;
}

}  // namespace sonavault
