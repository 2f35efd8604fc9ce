#include "platform/Mp3Header.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/SyntheticMp3.h"

namespace sonavault::testing {
namespace {

std::optional<Mp3Header> parse(std::array<int, 4> bytes) {
    std::array<std::uint8_t, 4> header{};
    for (std::size_t i = 0; i < 4; ++i) header[i] = static_cast<std::uint8_t>(bytes[i]);
    return parseMp3Header(header);
}

std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Mp3Header made(int sampleRate, int bitrateKbps, bool padded) {
    Mp3Shape shape;
    shape.sampleRate = sampleRate;
    shape.bitrateKbps = bitrateKbps;
    return parseMp3Header(bytesOf(mp3HeaderBytes(shape, padded))).value();
}

TEST(Mp3Header, reads_an_mpeg_1_frame_of_128_kbps_at_44100_hertz) {
    const auto header = parse({0xFF, 0xFB, 0x90, 0x00});
    ASSERT_TRUE(header);
    EXPECT_EQ(header->bitrateKbps, 128);
    EXPECT_EQ(header->sampleRate, 44100);
    EXPECT_EQ(header->samplesPerFrame, 1152);
    EXPECT_EQ(header->frameBytes, 417);
    EXPECT_NEAR(header->durationSec(), 0.026122, 1e-6);
}

TEST(Mp3Header, counts_the_padding_byte) {
    EXPECT_EQ(parse({0xFF, 0xFB, 0x92, 0x00})->frameBytes, 418);
}

TEST(Mp3Header, reads_an_mpeg_2_frame_of_64_kbps_at_22050_hertz) {
    const auto header = parse({0xFF, 0xF3, 0x80, 0xC0});
    ASSERT_TRUE(header);
    EXPECT_EQ(header->bitrateKbps, 64);
    EXPECT_EQ(header->sampleRate, 22050);
    EXPECT_EQ(header->samplesPerFrame, 576);
    EXPECT_EQ(header->frameBytes, 208);
    EXPECT_NEAR(header->durationSec(), 0.026122, 1e-6);
    EXPECT_EQ(parse({0xFF, 0xF3, 0x82, 0xC0})->frameBytes, 209);
}

TEST(Mp3Header, reads_mpeg_2_5_as_a_quarter_of_the_rates_with_the_bitrates_of_mpeg_2) {
    const auto header = parse({0xFF, 0xE3, 0x10, 0xC0});
    ASSERT_TRUE(header);
    EXPECT_EQ(header->sampleRate, 11025);
    EXPECT_EQ(header->bitrateKbps, 8);
    EXPECT_EQ(header->samplesPerFrame, 576);
    EXPECT_EQ(header->frameBytes, 52);
}

TEST(Mp3Header, knows_the_frame_sizes_of_the_streams_that_a_day_may_hold) {
    EXPECT_EQ(made(8000, 8, false).frameBytes, 72);
    EXPECT_EQ(made(16000, 16, false).frameBytes, 72);
    EXPECT_EQ(made(16000, 24, false).frameBytes, 108);
    EXPECT_EQ(made(22050, 48, false).frameBytes, 156);
    EXPECT_EQ(made(22050, 48, true).frameBytes, 157);
    EXPECT_EQ(made(22050, 96, false).frameBytes, 313);
}

TEST(Mp3Header, knows_the_smallest_and_the_largest_frame) {
    EXPECT_EQ(made(24000, 8, false).frameBytes, 24);
    EXPECT_EQ(made(32000, 320, true).frameBytes, kMp3MaxFrameBytes);
    EXPECT_EQ(made(8000, 160, true).frameBytes, kMp3MaxFrameBytes);
}

TEST(Mp3Header, knows_every_rate_and_bitrate_of_the_standards) {
    for (const int rate : {44100, 48000, 32000})
        for (const int kbps : {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}) {
            const Mp3Header header = made(rate, kbps, false);
            EXPECT_EQ(header.sampleRate, rate);
            EXPECT_EQ(header.bitrateKbps, kbps);
            EXPECT_EQ(header.frameBytes, 144000 * kbps / rate);
        }
    for (const int rate : {22050, 24000, 16000, 11025, 12000, 8000})
        for (const int kbps : {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}) {
            const Mp3Header header = made(rate, kbps, false);
            EXPECT_EQ(header.sampleRate, rate);
            EXPECT_EQ(header.bitrateKbps, kbps);
            EXPECT_EQ(header.frameBytes, 72000 * kbps / rate);
        }
}

TEST(Mp3Header, ignores_error_protection_private_bit_and_channel_mode) {
    const auto plain = parse({0xFF, 0xFB, 0x90, 0x00});
    EXPECT_EQ(parse({0xFF, 0xFA, 0x90, 0x00}), plain);
    EXPECT_EQ(parse({0xFF, 0xFB, 0x91, 0x00}), plain);
    EXPECT_EQ(parse({0xFF, 0xFB, 0x90, 0xFF}), plain);
}

TEST(Mp3Header, refuses_what_has_no_sync) {
    EXPECT_FALSE(parse({0xFE, 0xFB, 0x90, 0x00}));
    EXPECT_FALSE(parse({0xFF, 0xDB, 0x90, 0x00}));
    EXPECT_FALSE(parse({0xFF, 0x7B, 0x90, 0x00}));
    EXPECT_FALSE(parse({0x00, 0xFF, 0xFB, 0x90}));
}

TEST(Mp3Header, refuses_the_reserved_version_and_other_layers) {
    EXPECT_FALSE(parse({0xFF, 0xEB, 0x90, 0x00}));  // reserved version
    EXPECT_FALSE(parse({0xFF, 0xF9, 0x90, 0x00}));  // reserved layer
    EXPECT_FALSE(parse({0xFF, 0xFD, 0x90, 0x00}));  // Layer II
    EXPECT_FALSE(parse({0xFF, 0xFF, 0x90, 0x00}));  // Layer I
}

TEST(Mp3Header, refuses_free_format_bad_bitrate_and_reserved_rate) {
    EXPECT_FALSE(parse({0xFF, 0xFB, 0x00, 0x00}));
    EXPECT_FALSE(parse({0xFF, 0xFB, 0xF0, 0x00}));
    EXPECT_FALSE(parse({0xFF, 0xFB, 0x9C, 0x00}));
}

TEST(Mp3Header, refuses_fewer_than_four_bytes_though_the_fourth_says_nothing_about_the_size) {
    const std::array<std::uint8_t, 5> bytes = {0xFF, 0xFB, 0x90, 0x00, 0x00};
    for (std::size_t size = 0; size < 4; ++size)
        EXPECT_FALSE(parseMp3Header(std::span(bytes).first(size))) << size;
    EXPECT_TRUE(parseMp3Header(std::span(bytes).first(4)));
    EXPECT_TRUE(parseMp3Header(bytes));
}

TEST(Mp3Header, gives_every_header_it_accepts_a_size_that_holds_it) {
    int accepted = 0;
    for (int second = 0; second < 256; ++second)
        for (int third = 0; third < 256; ++third) {
            const auto header = parse({0xFF, second, third, 0});
            if (!header) continue;
            ++accepted;
            EXPECT_GE(header->frameBytes, 24);
            EXPECT_LE(header->frameBytes, kMp3MaxFrameBytes);
        }
    // Three versions, 14 bitrates, three rates, and padding, private and protection bit either way.
    EXPECT_EQ(accepted, 3 * 14 * 3 * 2 * 2 * 2);
}

TEST(Mp3DataStart, lies_behind_an_id3v2_tag) {
    SyntheticMp3 mp3;
    mp3.id3v2(4096).frames(2);
    EXPECT_EQ(mp3DataStart(mp3.span()), 4106);
}

TEST(Mp3DataStart, reads_the_tags_size_seven_bits_a_byte) {
    const std::string tag("ID3\x03\0\0\x7F\xFF\x81\x02", 10);
    EXPECT_EQ(mp3DataStart(bytesOf(tag)), 10 + 0x7F * 2097152 + 0x7F * 16384 + 1 * 128 + 2);
}

TEST(Mp3DataStart, is_the_beginning_without_a_whole_tag_header) {
    EXPECT_EQ(mp3DataStart({}), 0);
    EXPECT_EQ(mp3DataStart(bytesOf(std::string("ID3\x03\0\0\0\0\x01", 9))), 0);
    EXPECT_EQ(mp3DataStart(bytesOf("ID4.......")), 0);
    SyntheticMp3 mp3;
    mp3.frames(1);
    EXPECT_EQ(mp3DataStart(mp3.span()), 0);
}

TEST(Mp3DataEnd, lies_before_an_id3v1_tag) {
    SyntheticMp3 mp3;
    mp3.frames(2);
    const auto end = static_cast<std::int64_t>(mp3.bytes().size());
    EXPECT_EQ(mp3DataEnd(mp3.span()), end);
    mp3.id3v1();
    EXPECT_EQ(mp3DataEnd(mp3.span()), end);
}

TEST(Mp3DataEnd, is_the_files_end_when_the_tag_is_not_whole) {
    const std::string tag = "TAG" + std::string(124, ' ');
    EXPECT_EQ(mp3DataEnd(bytesOf(tag)), 127);
    EXPECT_EQ(mp3DataEnd({}), 0);
}

}  // namespace
}  // namespace sonavault::testing
