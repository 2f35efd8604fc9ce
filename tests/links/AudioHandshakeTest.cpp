#include "links/AudioHandshake.h"

#include <gtest/gtest.h>

#include "links/WireBytes.h"

namespace sonavault::testing {
namespace {

TEST(AudioHandshake, gives_interleaved_float_in_the_rate_and_channels_of_a_little_endian_sender) {
    const auto result = parseHandshake(handshakeBytes(44100, 2, 32, Order::little));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->format, (AudioFormat{44100.0, 2, true}));
    EXPECT_EQ(result->format.bytesPerFrame(), 8);
    EXPECT_FALSE(result->wireIsBigEndian);
}

TEST(AudioHandshake, finds_a_big_endian_sender_out_by_itself) {
    const auto result = parseHandshake(handshakeBytes(44100, 2, 32, Order::big));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->format, (AudioFormat{44100.0, 2, true}));
    EXPECT_TRUE(result->wireIsBigEndian);
}

TEST(AudioHandshake, reads_the_words_in_the_order_asked_for) {
    const Bytes little = handshakeBytes(8000, 8, 32, Order::little);
    const Bytes big = handshakeBytes(8000, 8, 32, Order::big);
    EXPECT_EQ(parseHandshakeLE(little), (AudioFormat{8000.0, 8, true}));
    EXPECT_EQ(parseHandshakeBE(big), (AudioFormat{8000.0, 8, true}));
    EXPECT_FALSE(parseHandshakeLE(big));
    EXPECT_FALSE(parseHandshakeBE(little));
}

TEST(AudioHandshake, takes_rates_from_8000_to_192000_hertz) {
    EXPECT_TRUE(makeFormat(8000, 1, 32));
    EXPECT_TRUE(makeFormat(192000, 1, 32));
    EXPECT_FALSE(makeFormat(7999, 1, 32));
    EXPECT_FALSE(makeFormat(192001, 1, 32));
    EXPECT_FALSE(makeFormat(0, 1, 32));
    EXPECT_FALSE(makeFormat(0xFFFFFFFF, 1, 32));
}

TEST(AudioHandshake, takes_one_to_eight_channels) {
    for (std::uint32_t channels = 1; channels <= 8; ++channels)
        EXPECT_TRUE(makeFormat(48000, channels, 32)) << channels;
    EXPECT_FALSE(makeFormat(48000, 0, 32));
    EXPECT_FALSE(makeFormat(48000, 9, 32));
    EXPECT_FALSE(makeFormat(48000, 0x80000000, 32));
}

TEST(AudioHandshake, takes_samples_of_32_bits_only) {
    for (const std::uint32_t format : {0U, 8U, 16U, 24U, 31U, 33U, 64U, 536870912U})
        EXPECT_FALSE(makeFormat(48000, 2, format)) << format;
}

TEST(AudioHandshake, refuses_a_bad_word_in_both_orders) {
    for (const Order order : {Order::little, Order::big}) {
        EXPECT_FALSE(parseHandshake(handshakeBytes(192001, 2, 32, order)));
        EXPECT_FALSE(parseHandshake(handshakeBytes(44100, 0, 32, order)));
        EXPECT_FALSE(parseHandshake(handshakeBytes(44100, 9, 32, order)));
        EXPECT_FALSE(parseHandshake(handshakeBytes(44100, 2, 16, order)));
    }
}

TEST(AudioHandshake, refuses_words_in_mixed_orders) {
    Bytes mixed;
    appendWord(mixed, 44100, Order::little);
    appendWord(mixed, 2, Order::big);
    appendWord(mixed, 32, Order::little);
    EXPECT_FALSE(parseHandshake(mixed));
}

TEST(AudioHandshake, is_twelve_bytes_and_no_other_number) {
    Bytes bytes = handshakeBytes(44100, 2, 32, Order::little);
    bytes.push_back(0);
    EXPECT_FALSE(parseHandshake(bytes));
    while (!bytes.empty()) {
        bytes.pop_back();
        EXPECT_EQ(parseHandshake(bytes).has_value(), bytes.size() == 12) << bytes.size();
    }
}

TEST(AudioHandshake, never_reads_the_same_bytes_in_both_orders) {
    for (std::uint32_t rate = 8000; rate <= 192000; ++rate) {
        const Bytes little = handshakeBytes(rate, 1 + rate % 8, 32, Order::little);
        ASSERT_TRUE(parseHandshakeLE(little));
        ASSERT_FALSE(parseHandshakeBE(little)) << rate;
    }
}

TEST(AudioHandshake, writes_bytes_as_two_small_digits_each) {
    EXPECT_EQ(hexText(Bytes{0x00, 0x0f, 0xa0, 0xff}), "00 0f a0 ff");
    EXPECT_EQ(hexText(Bytes{}), "");
}

}  // namespace
}  // namespace sonavault::testing
