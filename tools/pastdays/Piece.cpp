#include "pastdays/Piece.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <thread>

#include "pastdays/Song.h"
#include "pastdays/Speech.h"

namespace sonavault::pastdays {
namespace {

using Encoders = std::vector<std::unique_ptr<PieceEncoder>>;
using Encoded = std::vector<Result<EncodedSound>>;

// All are made before the first one works: making one fills tables that working ones read.
Result<Encoders> makeEncoders(std::size_t count, SoundFormat& format) {
    Encoders encoders;
    while (encoders.size() < count) {
        auto encoder = format.makeEncoder();
        if (!encoder) return Result<Encoders>::failure(encoder.error());
        encoders.push_back(std::move(encoder.value()));
    }
    return encoders;
}

Encoded encodeAll(const std::vector<Recipe>& recipes, Encoders& encoders) {
    Encoded sounds(recipes.size(), Result<EncodedSound>(EncodedSound()));
    std::atomic<std::size_t> taken = 0;
    const auto work = [&] {
        for (std::size_t i = taken++; i < recipes.size(); i = taken++)
            sounds[i] = encoders[i]->encode(soundOf(recipes[i]));
    };
    std::vector<std::jthread> helpers(std::max(1U, std::thread::hardware_concurrency()) - 1);
    for (std::jthread& helper : helpers) helper = std::jthread(work);
    work();
    helpers.clear();
    return sounds;
}

}  // namespace

std::vector<Recipe> standardRecipes(unsigned seed) {
    using enum PieceKind;
    std::vector<Recipe> recipes{
        {song, 1, 168, true},       {quietSong, 2, 142, true},   {song, 3, 154, false},
        {quietSong, 4, 131, false}, {song, 5, 176, false},       {quietSong, 6, 150, false},
        {song, 7, 139, false},      {adBreak, 8, 92, false},     {adBreak, 9, 61, true},
        {adBreak, 10, 75, false},   {talk, 11, 55, false},       {talk, 12, 38, true},
        {talk, 13, 24, false},      {talk, 14, 31, false},       {voicetrack, 15, 27, false},
        {voicetrack, 16, 19, true}, {voicetrack, 17, 13, false}, {alert, 18, 21, true},
        {jingle, 19, 7, true},      {jingle, 20, 5, false},      {silence, 21, 1, true}};
    for (Recipe& recipe : recipes) recipe.seed += 1000 * seed;
    return recipes;
}

std::vector<Recipe> legacyRecipes(unsigned seed) {
    std::vector<Recipe> recipes = standardRecipes(seed);
    std::erase_if(recipes, [](const Recipe& recipe) { return !recipe.legacy; });
    return recipes;
}

Samples soundOf(const Recipe& recipe) {
    const auto& [kind, seed, seconds, legacy] = recipe;
    switch (kind) {
        case PieceKind::song:
            return song(seed, Mood::lively, seconds);
        case PieceKind::quietSong:
            return song(seed, Mood::quiet, seconds);
        case PieceKind::talk:
            if (seed % 4 == 3) return conversation(seed, seconds);
            return talk(seed, {seed % 2 == 0 ? 1.25 : 0.95, -18}, seconds);
        case PieceKind::voicetrack:
            return talk(seed, {seed % 2 == 0 ? 0.8 : 1.4, -16}, seconds);
        case PieceKind::adBreak:
            return adBreak(seed, 4, seconds);
        case PieceKind::alert:
            return alert(seed, seconds);
        case PieceKind::jingle:
            return jingle(seed, seconds);
        case PieceKind::silence:
            break;
    }
    return Samples(samplesIn(seconds));
}

Result<std::vector<Piece>> makePieces(const std::vector<Recipe>& recipes, SoundFormat& format) {
    using Made = Result<std::vector<Piece>>;
    auto encoders = makeEncoders(recipes.size(), format);
    if (!encoders) return Made::failure(encoders.error());
    Encoded sounds = encodeAll(recipes, encoders.value());
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < recipes.size(); ++i) {
        if (!sounds[i]) return Made::failure(sounds[i].error());
        pieces.push_back({recipes[i].kind, std::move(sounds[i].value())});
    }
    return pieces;
}

}  // namespace sonavault::pastdays
