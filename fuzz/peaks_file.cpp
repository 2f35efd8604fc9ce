#include <cmath>
#include <cstdint>
#include <string>

#include "Check.h"
#include "store/PeaksFile.h"

namespace {

using sonavault::testing::check;

}  // namespace

/// Any bytes are refused for one of the format's reasons, or are what encoding their record gives,
/// but for bytes behind the last bucket.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavault;
    const std::string bytes(data, data + size);
    const auto peaks = decodePeaks(bytes);
    if (!peaks) {
        check(peaks.error().code >= PeaksError::Code::truncated);
        check(peaks.error().code <= PeaksError::Code::invalidBucketSec);
        check(!peaks.error().description.empty());
        return 0;
    }
    check(peaks.value().bucketSec > 0);
    check(peaks.value().rms.size() <= (size - 32) / 4);
    const std::string again = encodePeaks(peaks.value());
    check(again.size() <= size && bytes.starts_with(again));
    return 0;
}
