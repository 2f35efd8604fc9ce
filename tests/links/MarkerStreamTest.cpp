#include "links/MarkerStream.h"

#include <gtest/gtest.h>

#include <string>

#include "links/HeardStream.h"

namespace sonavault::testing {
namespace {

/// What a stream made of its bytes, whatever the pieces: payloads, and in words all else.
struct Heard {
    std::vector<Bytes> payloads;
    std::vector<std::string> events;

    bool operator==(const Heard&) const = default;
};

void takeAll(MarkerStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<MarkerStream::NeedsMore>(step)) return;
        if (const auto* settled = std::get_if<MarkerStream::Settled>(&step))
            heard.events.emplace_back(settled->order == LengthEndian::big ? "BE" : "LE");
        if (const auto* prefix = std::get_if<MarkerStream::Unparseable>(&step))
            heard.events.push_back("unparseable " + std::to_string(prefix->little) + " " +
                                   std::to_string(prefix->big));
        if (const auto* tooLong = std::get_if<MarkerStream::TooLong>(&step))
            heard.events.push_back("too long " + std::to_string(tooLong->length));
        if (const auto* payload = std::get_if<MarkerStream::Payload>(&step))
            heard.payloads.emplace_back(payload->bytes.begin(), payload->bytes.end());
    }
}

Heard hear(const std::vector<Bytes>& pieces) {
    return hearPieces<MarkerStream, Heard>(pieces, takeAll);
}

Heard hearSplitAt(const Bytes& bytes, std::size_t at) {
    return hear(splitAt(bytes, at));
}

Bytes prefix(std::uint32_t length, Order order) {
    Bytes bytes;
    appendWord(bytes, length, order);
    return bytes;
}

Bytes frame(const Bytes& payload, Order order) {
    return prefix(static_cast<std::uint32_t>(payload.size()), order) + payload;
}

const std::vector<Bytes> kPayloads = {{'o', 'n', 'e'}, {7}, Bytes(300, 0), Bytes(20, 0xFF)};

Bytes frames(Order order) {
    Bytes bytes;
    for (const Bytes& payload : kPayloads) bytes = bytes + frame(payload, order);
    return bytes;
}

class MarkerStreamInOrder : public ::testing::TestWithParam<Order> {
  protected:
    static std::string name() { return GetParam() == Order::big ? "BE" : "LE"; }
};

INSTANTIATE_TEST_SUITE_P(BothOrders, MarkerStreamInOrder,
                         ::testing::Values(Order::little, Order::big), [](const auto& each) {
                             return each.param == Order::big ? "big" : "little";
                         });

TEST_P(MarkerStreamInOrder, gives_two_frames_of_one_read_in_order) {
    const Heard heard = hear({frame({'a'}, GetParam()) + frame({'b', 'c'}, GetParam())});
    EXPECT_EQ(heard.payloads, (std::vector<Bytes>{{'a'}, {'b', 'c'}}));
    EXPECT_EQ(heard.events, std::vector<std::string>{name()});
}

TEST_P(MarkerStreamInOrder, gives_the_same_payloads_split_at_every_byte) {
    const Bytes bytes = frames(GetParam());
    for (std::size_t at = 0; at <= bytes.size(); ++at) {
        const Heard heard = hearSplitAt(bytes, at);
        EXPECT_EQ(heard.payloads, kPayloads) << "split at " << at;
        EXPECT_EQ(heard.events, std::vector<std::string>{name()});
    }
}

TEST_P(MarkerStreamInOrder, gives_the_same_payloads_byte_by_byte) {
    EXPECT_EQ(hear(byteByByte(frames(GetParam()))).payloads, kPayloads);
}

TEST_P(MarkerStreamInOrder, gives_only_whole_payloads_cut_at_every_byte) {
    const Bytes bytes = frames(GetParam());
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const Heard heard =
            hear({Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length))});
        std::size_t whole = 0;
        for (std::size_t end = 4 + kPayloads[0].size(); end <= length;
             end += 4 + kPayloads[++whole].size())
            ASSERT_LT(whole, heard.payloads.size()) << length;
        EXPECT_EQ(heard.payloads.size(), whole) << length;
    }
}

TEST_P(MarkerStreamInOrder, never_invents_bytes_when_any_byte_is_damaged) {
    const Bytes whole = frames(GetParam());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int bit : {0, 3, 7}) {
            Bytes bytes = whole;
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ (1U << bit));
            const Heard heard = hear({bytes});
            std::size_t taken = 0;
            for (const Bytes& payload : heard.payloads) taken += 4 + payload.size();
            EXPECT_LE(taken, bytes.size()) << at;
            EXPECT_LE(heard.events.size(), 2U) << at;
            EXPECT_EQ(hearSplitAt(bytes, at), heard) << at;
        }
    }
}

TEST_P(MarkerStreamInOrder, costs_one_payload_when_a_payload_is_damaged) {
    Bytes bytes = frames(GetParam());
    bytes[5] ^= 0xFF;
    Heard heard = hear({bytes});
    EXPECT_NE(heard.payloads[0], kPayloads[0]);
    heard.payloads[0] = kPayloads[0];
    EXPECT_EQ(heard.payloads, kPayloads);
}

TEST_P(MarkerStreamInOrder, takes_a_payload_of_the_most_bytes_and_refuses_one_more) {
    const Bytes first = frame({'x'}, GetParam());
    EXPECT_EQ(hear({first + frame(Bytes(65536, 5), GetParam())}).payloads.back().size(), 65536U);

    const Heard heard = hear({first + prefix(65537, GetParam()) + Bytes(65537, 5)});
    EXPECT_EQ(heard.payloads.size(), 1U);
    EXPECT_EQ(heard.events, (std::vector<std::string>{name(), "too long 65537"}));
}

TEST_P(MarkerStreamInOrder, refuses_an_oversized_length_before_its_bytes_come) {
    const Heard heard = hear({frame({'x'}, GetParam()), prefix(0xFFFFFFFFU, GetParam())});
    EXPECT_EQ(heard.events.back(), "too long 4294967295");
}

TEST_P(MarkerStreamInOrder, passes_an_empty_payload_once_the_order_is_known) {
    const Heard heard =
        hear({frame({'x'}, GetParam()) + prefix(0, GetParam()) + frame({'y'}, GetParam())});
    EXPECT_EQ(heard.payloads, (std::vector<Bytes>{{'x'}, {}, {'y'}}));
}

TEST_P(MarkerStreamInOrder, holds_no_more_than_one_unfinished_frame) {
    MarkerStream stream;
    Heard heard;
    const Bytes bytes = frame(Bytes(65536, 1), GetParam());
    stream.append(frame({'x'}, GetParam()));
    for (int round = 0; round < 20; ++round) {
        stream.append(bytes);
        takeAll(stream, heard);
        stream.append(Bytes(bytes.begin(), bytes.end() - 1));
        takeAll(stream, heard);
        EXPECT_EQ(stream.pendingByteCount(), 65539U);
        stream.append({&bytes.back(), 1});
        takeAll(stream, heard);
        EXPECT_EQ(stream.pendingByteCount(), 0U);
    }
    EXPECT_EQ(heard.payloads.size(), 41U);
}

TEST(MarkerStream, waits_for_the_fourth_byte_of_a_prefix) {
    MarkerStream stream;
    for (const std::uint8_t byte : Bytes{1, 0, 0}) {
        stream.append({&byte, 1});
        EXPECT_TRUE(std::holds_alternative<MarkerStream::NeedsMore>(stream.take()));
    }
    EXPECT_EQ(stream.lengthEndian(), LengthEndian::unknown);
    const std::uint8_t last = 0;
    stream.append({&last, 1});
    EXPECT_TRUE(std::holds_alternative<MarkerStream::Settled>(stream.take()));
    EXPECT_TRUE(std::holds_alternative<MarkerStream::NeedsMore>(stream.take()));
}

TEST(MarkerStream, refuses_a_first_prefix_that_is_no_length_in_either_order) {
    EXPECT_EQ(hear({Bytes(4, 0)}).events, std::vector<std::string>{"unparseable 0 0"});
    EXPECT_EQ(hear({{'G', 'E', 'T', ' '}}).events,
              std::vector<std::string>{"unparseable 542393671 1195725856"});
    EXPECT_EQ(hear({{1, 0, 1, 1}}).events,
              std::vector<std::string>{"unparseable 16842753 16777473"});
}

TEST(MarkerStream, takes_nothing_from_a_sender_that_is_to_be_dropped) {
    for (std::size_t at = 0; at <= 12; ++at) {
        const Heard heard = hearSplitAt(Bytes(4, 0) + frame({'x', 'y', 'z', '!'}, Order::big), at);
        EXPECT_EQ(heard.events, std::vector<std::string>{"unparseable 0 0"}) << at;
        EXPECT_TRUE(heard.payloads.empty());
    }
}

TEST(MarkerStream, reads_every_possible_first_length_in_its_order_but_two) {
    std::vector<std::uint32_t> misjudged;
    for (std::uint32_t length = 1; length <= kMaxPayloadBytes; ++length) {
        EXPECT_EQ(hear({prefix(length, Order::little)}).events[0], "LE") << length;
        if (hear({prefix(length, Order::big)}).events[0] != "BE") misjudged.push_back(length);
    }
    EXPECT_EQ(misjudged, (std::vector<std::uint32_t>{256, 65536}));
}

TEST(MarkerStream, misreads_a_big_endian_sender_that_begins_with_256_bytes_until_the_cap) {
    const Bytes bytes = frame(Bytes(256, '{'), Order::big);
    Heard heard = hear({bytes});
    EXPECT_EQ(heard.events, std::vector<std::string>{"LE"});
    EXPECT_TRUE(heard.payloads.empty()) << "65536 bytes are awaited";

    heard = hear({bytes + Bytes(65536 - 256, '{') + frame(Bytes(100, '{'), Order::big)});
    EXPECT_EQ(heard.payloads.size(), 1U);
    EXPECT_EQ(heard.events, (std::vector<std::string>{"LE", "too long 1677721600"}));
}

TEST(MarkerStream, misreads_a_big_endian_sender_that_begins_with_65536_bytes) {
    const Heard heard = hear({frame(Bytes(65536, '{'), Order::big)});
    EXPECT_EQ(heard.payloads, std::vector<Bytes>{Bytes(256, '{')});
    EXPECT_EQ(heard.events, (std::vector<std::string>{"LE", "too long 2071690107"}));
}

TEST(MarkerStream, forgets_bytes_and_order_at_a_reset) {
    MarkerStream stream;
    Heard heard;
    stream.append(frame({'x'}, Order::little) + Bytes{9, 0, 0});
    takeAll(stream, heard);
    stream.reset();
    EXPECT_EQ(stream.pendingByteCount(), 0U);
    EXPECT_EQ(stream.lengthEndian(), LengthEndian::unknown);
    stream.append(frame({'y'}, Order::big));
    takeAll(stream, heard);
    EXPECT_EQ(heard.events, (std::vector<std::string>{"LE", "BE"}));
    EXPECT_EQ(heard.payloads, (std::vector<Bytes>{{'x'}, {'y'}}));
}

TEST(MarkerStream, takes_a_new_sender_after_a_refused_one) {
    MarkerStream stream;
    Heard heard;
    stream.append(Bytes(4, 0));
    takeAll(stream, heard);
    stream.reset();
    stream.append(frame({'x'}, Order::little));
    takeAll(stream, heard);
    EXPECT_EQ(heard.payloads, std::vector<Bytes>{{'x'}});
}

}  // namespace
}  // namespace sonavault::testing
