#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Check.h"
#include "hub/DecodedSize.h"
#include "hub/Envelope.h"
#include "hub/LineSplitter.h"
#include "hub/RequestRules.h"

namespace {

using sonavault::Envelope;
using sonavault::LineSplitter;
using Lines = std::vector<std::string>;

constexpr std::size_t kMostBytesOfALine = 4096;

using sonavault::testing::check;

/// The lines of `bytes` when they come in pieces whose sizes `splits` gives, over and over; in one
/// piece without any.
Lines split(std::string_view bytes, std::string_view splits) {
    LineSplitter splitter(kMostBytesOfALine);
    Lines lines;
    for (std::size_t at = 0, piece = 0; at < bytes.size(); ++piece) {
        std::size_t size = bytes.size() - at;
        if (!splits.empty()) {
            const auto wanted = static_cast<unsigned char>(splits[piece % splits.size()]) + 1U;
            size = std::min<std::size_t>(size, wanted);
        }
        splitter.append(bytes.substr(at, size));
        while (const auto line = splitter.next()) lines.emplace_back(*line);
        check(splitter.pendingByteCount() <= kMostBytesOfALine);
        at += size;
    }
    return lines;
}

/// The lines worked out in the plainest way.
Lines expected(std::string_view bytes) {
    Lines lines;
    for (std::size_t at = 0;;) {
        const auto end = bytes.find('\n', at);
        if (end == std::string_view::npos) return lines;
        const auto line = bytes.substr(at, end - at);
        if (!line.empty() && line.size() <= kMostBytesOfALine) lines.emplace_back(line);
        at = end + 1;
    }
}

/// What the message would mean to those who had asked for it.
void checkReply(const sonavault::SwitchboardMessage& reply) {
    using Code = sonavault::SwitchboardError::Code;
    const bool hasError = reply.payload["error"].isString();
    const bool isRefusal = hasError && reply.from == sonavault::kHubName;
    const auto query = sonavault::queryResult(reply);
    check(static_cast<bool>(query) != isRefusal);
    if (isRefusal)
        check((query.error().code == Code::timeout) == (query.error().hubErrorCode == "timeout"));
    else
        check(query.value() == reply);
    check(static_cast<bool>(sonavault::pingResult(reply)) != isRefusal);
    const auto value = sonavault::stateGetResult(reply);
    const auto* error = std::get_if<sonavault::SwitchboardError>(&value.outcome);
    check((error != nullptr) == (hasError || !reply.payload["exists"].isBool()));
    if (error) check((error->code == Code::hubError) == hasError);
}

/// What was understood can be said again, and means the same.
void checkDecode(const std::string& line) {
    const auto envelope = Envelope::decode(line);
    if (!envelope) {
        check(envelope.error().code == sonavault::SwitchboardError::Code::malformedReply);
        return check(!envelope.error().message.empty());
    }
    const auto said = envelope.value().encode();
    check(static_cast<bool>(said));
    check(said.value().find('\n') == std::string::npos);
    const auto again = Envelope::decode(said.value());
    check(static_cast<bool>(again));
    check(again.value().encode().value() == said.value());
    checkReply(sonavault::SwitchboardMessage::of(Envelope(envelope.value())));
}

}  // namespace

/// The first byte says how many bytes of split sizes follow; the rest is what a hub sends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t splitCount = std::min<std::size_t>(data[0], size - 1);
    const auto splits = input.substr(1, splitCount);
    const auto bytes = input.substr(1 + splitCount);
    const Lines lines = expected(bytes);
    check(split(bytes, splits) == lines);
    check(split(bytes, std::string_view("\0", 1)) == lines);
    check(split(bytes, {}) == lines);
    for (const auto& line : lines) {
        check(sonavault::isWorthDecoding(line, sonavault::decodedSize(line)));
        checkDecode(line);
    }
    return 0;
}
