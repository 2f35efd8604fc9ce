#include "links/AudioStream.h"

#include <gtest/gtest.h>

#include <limits>

#include "links/HeardStream.h"

namespace sonavault::testing {
namespace {

/// What a stream made of its bytes, whatever the pieces.
struct Heard {
    std::vector<HandshakeResult> agreed;
    std::vector<Bytes> refused;
    std::vector<float> samples;
    int buffers = 0;
};

void takeAll(AudioStream& stream, Heard& heard) {
    for (;;) {
        const auto step = stream.take();
        if (std::holds_alternative<AudioStream::NeedsMore>(step)) return;
        if (const auto* agreed = std::get_if<AudioStream::Agreed>(&step))
            heard.agreed.push_back(agreed->handshake);
        if (const auto* refused = std::get_if<AudioStream::Refused>(&step))
            heard.refused.emplace_back(refused->bytes.begin(), refused->bytes.end());
        if (const auto* buffer = std::get_if<AudioBufferView>(&step)) {
            const auto words = static_cast<std::size_t>(buffer->frames * buffer->format.channels);
            heard.samples.insert(heard.samples.end(), buffer->planes[0], buffer->planes[0] + words);
            ++heard.buffers;
        }
    }
}

Heard hear(const std::vector<Bytes>& pieces) {
    return hearPieces<AudioStream, Heard>(pieces, takeAll);
}

Heard hearSplitAt(const Bytes& bytes, std::size_t at) {
    return hear(splitAt(bytes, at));
}

class AudioStreamInOrder : public ::testing::TestWithParam<Order> {};

INSTANTIATE_TEST_SUITE_P(BothOrders, AudioStreamInOrder,
                         ::testing::Values(Order::little, Order::big), [](const auto& each) {
                             return each.param == Order::big ? "big" : "little";
                         });

TEST_P(AudioStreamInOrder, gives_the_same_samples_split_at_every_byte) {
    for (const std::uint32_t channels : {1U, 2U, 3U, 8U}) {
        const auto samples = distinctSamples(static_cast<int>(channels) * 5);
        const Bytes bytes =
            handshakeBytes(48000, channels, 32, GetParam()) + sampleBytes(samples, GetParam());
        for (std::size_t at = 0; at <= bytes.size(); ++at) {
            const Heard heard = hearSplitAt(bytes, at);
            ASSERT_EQ(heard.agreed.size(), 1U) << at;
            EXPECT_EQ(heard.agreed[0].wireIsBigEndian, GetParam() == Order::big);
            EXPECT_EQ(heard.samples, samples) << channels << " channels, split at " << at;
        }
    }
}

TEST_P(AudioStreamInOrder, gives_the_same_samples_byte_by_byte) {
    const auto samples = distinctSamples(24);
    const Heard heard = hear(
        byteByByte(handshakeBytes(8000, 2, 32, GetParam()) + sampleBytes(samples, GetParam())));
    EXPECT_EQ(heard.samples, samples);
    EXPECT_EQ(heard.buffers, 12);
}

TEST_P(AudioStreamInOrder, carries_every_bit_of_unusual_samples) {
    const std::vector<float> samples = {0.0F,
                                        -0.0F,
                                        std::numeric_limits<float>::infinity(),
                                        std::numeric_limits<float>::denorm_min(),
                                        std::numeric_limits<float>::max(),
                                        std::bit_cast<float>(0x7FC12345U)};
    const Heard heard =
        hear({handshakeBytes(8000, 1, 32, GetParam()) + sampleBytes(samples, GetParam())});
    ASSERT_EQ(heard.samples.size(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(heard.samples[i]),
                  std::bit_cast<std::uint32_t>(samples[i]));
}

TEST(AudioStream, waits_for_the_twelfth_byte) {
    const Bytes handshake = handshakeBytes(44100, 2, 32, Order::little);
    AudioStream stream;
    for (std::size_t i = 0; i < 11; ++i) {
        stream.append({&handshake[i], 1});
        EXPECT_TRUE(std::holds_alternative<AudioStream::NeedsMore>(stream.take())) << i;
    }
    stream.append({&handshake[11], 1});
    EXPECT_TRUE(std::holds_alternative<AudioStream::Agreed>(stream.take()));
}

TEST(AudioStream, gives_a_handshake_and_the_samples_behind_it_in_one_pass) {
    AudioStream stream;
    stream.append(handshakeBytes(44100, 2, 32, Order::little) +
                  sampleBytes({0.25F, -0.5F, 0.75F, 1.0F}, Order::little));
    ASSERT_TRUE(std::holds_alternative<AudioStream::Agreed>(stream.take()));
    const auto step = stream.take();
    const auto* buffer = std::get_if<AudioBufferView>(&step);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->format, (AudioFormat{44100.0, 2, true}));
    EXPECT_EQ(buffer->frames, 2);
    EXPECT_EQ(buffer->planes[0][3], 1.0F);
    EXPECT_TRUE(std::holds_alternative<AudioStream::NeedsMore>(stream.take()));
}

TEST(AudioStream, gives_all_whole_frames_as_one_buffer_of_whatever_size) {
    const Heard heard = hear({handshakeBytes(44100, 2, 32, Order::little),
                              sampleBytes(distinctSamples(20000), Order::little)});
    EXPECT_EQ(heard.buffers, 1);
    EXPECT_EQ(heard.samples.size(), 20000U);
}

TEST(AudioStream, keeps_a_partial_frame_for_the_next_read) {
    AudioStream stream;
    Heard heard;
    const Bytes samples = sampleBytes({1.0F, 2.0F, 3.0F, 4.0F}, Order::little);
    stream.append(handshakeBytes(44100, 2, 32, Order::little) +
                  Bytes(samples.begin(), samples.begin() + 13));
    takeAll(stream, heard);
    EXPECT_EQ(heard.samples, (std::vector<float>{1.0F, 2.0F}));
    EXPECT_EQ(stream.pendingByteCount(), 5U);
    stream.append(Bytes(samples.begin() + 13, samples.end()));
    takeAll(stream, heard);
    EXPECT_EQ(heard.samples, (std::vector<float>{1.0F, 2.0F, 3.0F, 4.0F}));
    EXPECT_EQ(stream.pendingByteCount(), 0U);
}

TEST(AudioStream, never_holds_more_than_an_unfinished_frame) {
    AudioStream stream;
    Heard heard;
    stream.append(handshakeBytes(192000, 8, 32, Order::big));
    for (std::size_t size = 1; size < 400; ++size) {
        stream.append(Bytes(size, 0));
        takeAll(stream, heard);
        EXPECT_LT(stream.pendingByteCount(), 32U);
    }
}

TEST(AudioStream, tells_a_refusal_once_with_the_twelve_bytes) {
    const Bytes garbage(200, 0xAB);
    for (std::size_t at = 0; at <= 40; ++at) {
        const Heard heard = hearSplitAt(garbage, at);
        EXPECT_EQ(heard.refused, std::vector<Bytes>{Bytes(12, 0xAB)}) << at;
        EXPECT_TRUE(heard.agreed.empty());
        EXPECT_TRUE(heard.samples.empty());
    }
}

TEST(AudioStream, does_not_take_a_handshake_after_a_refusal) {
    const Heard heard =
        hear({Bytes(12, 0xAB), handshakeBytes(44100, 2, 32, Order::little), Bytes(80, 0)});
    EXPECT_EQ(heard.refused.size(), 1U);
    EXPECT_TRUE(heard.agreed.empty());
    EXPECT_TRUE(heard.samples.empty());
}

TEST(AudioStream, begins_with_a_new_handshake_in_its_own_order_after_a_reset) {
    AudioStream stream;
    Heard heard;
    stream.append(handshakeBytes(44100, 2, 32, Order::little) + Bytes(5, 7));
    takeAll(stream, heard);
    stream.reset();
    EXPECT_EQ(stream.pendingByteCount(), 0U);
    stream.append(handshakeBytes(22050, 1, 32, Order::big) + sampleBytes({0.5F}, Order::big));
    takeAll(stream, heard);
    ASSERT_EQ(heard.agreed.size(), 2U);
    EXPECT_EQ(heard.agreed[1], (HandshakeResult{{22050.0, 1, true}, true}));
    EXPECT_EQ(heard.samples, std::vector<float>{0.5F});
}

TEST(AudioStream, takes_a_new_sender_after_a_refused_one) {
    AudioStream stream;
    Heard heard;
    stream.append(Bytes(12, 0));
    takeAll(stream, heard);
    stream.reset();
    stream.append(handshakeBytes(22050, 1, 32, Order::little));
    takeAll(stream, heard);
    EXPECT_EQ(heard.agreed.size(), 1U);
}

}  // namespace
}  // namespace sonavault::testing
