#include "automation/AirWire.h"

#include <gtest/gtest.h>

#include "links/AudioStream.h"

namespace sonavault::automation {
namespace {

TEST(AirWire, writes_the_handshake_in_either_byte_order) {
    EXPECT_EQ(encodeHandshake({44100, 2, false}),
              (std::vector<std::uint8_t>{0x44, 0xac, 0, 0, 2, 0, 0, 0, 0x20, 0, 0, 0}));
    EXPECT_EQ(encodeHandshake({44100, 2, true}),
              (std::vector<std::uint8_t>{0, 0, 0xac, 0x44, 0, 0, 0, 2, 0, 0, 0, 0x20}));
}

TEST(AirWire, writes_each_sample_into_every_channel) {
    const std::vector<float> half = {0.5F};
    EXPECT_EQ(encodeFrames(half, {8000, 3, true}),
              (std::vector<std::uint8_t>{0x3f, 0, 0, 0, 0x3f, 0, 0, 0, 0x3f, 0, 0, 0}));
    EXPECT_EQ(encodeFrames(half, {8000, 1, false}), (std::vector<std::uint8_t>{0, 0, 0, 0x3f}));
}

TEST(AirWire, is_what_the_recorder_reads) {
    const std::vector<float> mono = {0.25F, -1.0F, 0.7F};
    for (const bool bigEndian : {false, true}) {
        for (int channels = 1; channels <= 8; ++channels) {
            const AirFormat format{96000, channels, bigEndian};
            AudioStream stream;
            stream.append(encodeHandshake(format));
            stream.append(encodeFrames(mono, format));
            const auto handshake = stream.take();
            ASSERT_TRUE(std::holds_alternative<AudioStream::Agreed>(handshake));
            EXPECT_EQ(std::get<AudioStream::Agreed>(handshake).handshake,
                      (HandshakeResult{{96000.0, channels, true}, bigEndian}));
            const auto step = stream.take();
            ASSERT_TRUE(std::holds_alternative<AudioBufferView>(step));
            const auto& buffer = std::get<AudioBufferView>(step);
            ASSERT_EQ(buffer.frames, 3);
            for (int i = 0; i < 3 * channels; ++i)
                EXPECT_EQ(buffer.planes[0][i], mono[static_cast<std::size_t>(i / channels)]);
        }
    }
}

}  // namespace
}  // namespace sonavault::automation
