#include "system/ScreenPicture.h"

#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

// The places of what matters in the dump's head, whose words have their high byte first.
enum Word : std::size_t {
    headSize = 0,
    width = 4,
    height = 5,
    bitsPerPixel = 11,
    bytesPerLine = 12,
    coloursInMap = 19
};

constexpr std::size_t kWordBytes = 4;
constexpr std::size_t kMapEntryBytes = 12;
constexpr std::size_t kPixelBytes = 4;  // blue first

int byteAt(const std::string& bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes.at(place));
}

std::size_t wordAt(const std::string& bytes, Word word) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < kWordBytes; ++i)
        value = value * 256 + static_cast<std::size_t>(byteAt(bytes, word * kWordBytes + i));
    return value;
}

bool isNear(Pixel one, Pixel other) {
    return std::abs(one.red - other.red) <= 1 && std::abs(one.green - other.green) <= 1 &&
           std::abs(one.blue - other.blue) <= 1;
}

template <typename Visit>
void forEachPlace(const Box& part, Visit visit) {
    for (double y = std::ceil(part.y); y < part.bottom(); ++y)
        for (double x = std::ceil(part.x); x < part.right(); ++x) visit(Point{x, y});
}

}  // namespace

Pixel pixelOf(const Colour& colour) {
    const auto level = [](double part) { return static_cast<int>(std::lround(part * 255)); };
    return {level(colour.red), level(colour.green), level(colour.blue)};
}

ScreenPicture::ScreenPicture(const std::filesystem::path& dump) {
    const std::string bytes = readFile(dump);
    if (bytes.size() <= coloursInMap * kWordBytes) throw std::runtime_error("there is no screen");
    if (wordAt(bytes, bitsPerPixel) != 8 * kPixelBytes)
        throw std::runtime_error("the screen has pixels of another kind");
    width_ = static_cast<int>(wordAt(bytes, width));
    height_ = static_cast<int>(wordAt(bytes, height));
    const std::size_t first =
        wordAt(bytes, headSize) + wordAt(bytes, coloursInMap) * kMapEntryBytes;
    pixels_.reserve(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    for (std::size_t y = 0; y < static_cast<std::size_t>(height_); ++y) {
        const std::size_t line = first + y * wordAt(bytes, bytesPerLine);
        for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x) {
            const std::size_t pixel = line + x * kPixelBytes;
            pixels_.push_back(
                {byteAt(bytes, pixel + 2), byteAt(bytes, pixel + 1), byteAt(bytes, pixel)});
        }
    }
}

Pixel ScreenPicture::at(Point place) const {
    const int x = static_cast<int>(std::floor(place.x));
    const int y = static_cast<int>(std::floor(place.y));
    if (x < 0 || y < 0 || x >= width_ || y >= height_)
        throw std::runtime_error("that is not on the screen");
    return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                   static_cast<std::size_t>(x)];
}

int ScreenPicture::count(const Box& part, Pixel colour) const {
    int found = 0;
    forEachPlace(part, [&](Point place) { found += isNear(at(place), colour) ? 1 : 0; });
    return found;
}

int ScreenPicture::differences(const Box& part, const ScreenPicture& other) const {
    int found = 0;
    forEachPlace(part, [&](Point place) { found += at(place) == other.at(place) ? 0 : 1; });
    return found;
}

}  // namespace sonavault::testing
