#include "platform/AudioOutputSound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "platform/CubebOutputRun.h"

namespace sonavault::testing {
namespace {

constexpr double kRate = 8000;
constexpr FrameCount kCapacity = 16000;

std::vector<float> countedFrames(FrameCount from, FrameCount count) {
    std::vector<float> samples;
    for (FrameCount i = from; i < from + count; ++i)
        samples.insert(samples.end(), {static_cast<float>(i), -static_cast<float>(i)});
    return samples;
}

TEST(AudioOutputSound, takes_as_much_as_there_is_room_for_and_gives_it_in_order) {
    AudioOutputSound sound(kRate);
    const auto frames = countedFrames(0, kCapacity + 10);
    EXPECT_EQ(sound.push(frames.data(), kCapacity + 10), kCapacity);
    EXPECT_EQ(sound.push(frames.data(), 1), 0);
    std::vector<float> out(20);
    EXPECT_EQ(sound.take(out.data(), 10), 10);
    EXPECT_EQ(out, countedFrames(0, 10));
    EXPECT_EQ(sound.ready(), kCapacity - 10);
    EXPECT_EQ(sound.taken(), 10);
    EXPECT_EQ(sound.push(frames.data() + 2 * kCapacity, 10), 10);
    std::vector<float> rest(2 * kCapacity);
    EXPECT_EQ(sound.take(rest.data(), 2 * kCapacity), kCapacity);
    EXPECT_EQ(rest, countedFrames(10, kCapacity));
    EXPECT_EQ(sound.take(rest.data(), 1), 0);
}

TEST(AudioOutputSound, reaches_the_listener_whole_from_a_maker_on_another_thread) {
    constexpr FrameCount kFrames = 200'000;
    AudioOutputSound sound(kRate);
    std::thread maker([&] {
        for (FrameCount made = 0; made < kFrames;) {
            const auto piece = countedFrames(made, std::min<FrameCount>(997, kFrames - made));
            const auto count = static_cast<FrameCount>(piece.size() / 2);
            for (FrameCount pushed = 0; pushed < count;) {
                const auto now = sound.push(piece.data() + 2 * pushed, count - pushed);
                if (now == 0) sound.awaitRoom();
                pushed += now;
            }
            made += count;
        }
    });
    std::array<float, 600> out{};
    FrameCount heard = 0;
    FrameCount wrong = 0;
    while (heard < kFrames) {
        const FrameCount taken = sound.take(out.data(), 300);
        for (FrameCount i = 0; i < taken; ++i)
            wrong += out[static_cast<std::size_t>(2 * i)] != static_cast<float>(heard + i);
        heard += taken;
    }
    maker.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(sound.ready(), 0);
}

TEST(CubebOutputRun, keeps_a_sound_alive_for_as_long_as_it_is_read) {
    CubebOutputRun run;
    auto sound = std::make_shared<AudioOutputSound>(kRate);
    const std::weak_ptr<AudioOutputSound> watched = sound;
    run.use(std::move(sound));
    ASSERT_EQ(run.borrow(), watched.lock().get());
    run.use(nullptr);
    EXPECT_FALSE(watched.expired()) << "it is being read";
    run.giveBack();
    EXPECT_EQ(run.borrow(), nullptr);
    run.giveBack();
    run.use(nullptr);
    EXPECT_TRUE(watched.expired());
}

TEST(CubebOutputRun, lets_sounds_be_changed_while_they_are_read) {
    CubebOutputRun run;
    std::atomic<bool> over{false};
    std::atomic<int> reads{0};
    std::thread reader([&] {
        std::array<float, 2> frame{};
        while (!over) {
            if (AudioOutputSound* const sound = run.borrow())
                reads += sound->take(frame.data(), 1) == 1;
            run.giveBack();
        }
    });
    const std::array<float, 2> frame{0.5F, 0.5F};
    for (int i = 0; i < 2000 || reads < 100; ++i) {
        auto sound = std::make_shared<AudioOutputSound>(kRate / 8);
        sound->push(frame.data(), 1);
        run.use(std::move(sound));
    }
    over = true;
    reader.join();
    EXPECT_GE(reads, 100);
}

TEST(CubebOutputRun, shows_no_level_of_a_stream_that_asks_for_nothing) {
    CubebOutputRun run;
    run.setLevels({-6, -12});
    EXPECT_EQ(run.levels().left, kSilenceDb);
    run.asked();
    EXPECT_EQ(run.levels().left, -6);
    EXPECT_EQ(run.levels().right, -12);
}

}  // namespace
}  // namespace sonavault::testing
