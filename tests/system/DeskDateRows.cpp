#include "review/DateRow.h"
#include "review/LogsTabLayout.h"
#include "system/DeskPlaces.h"

namespace sonavault::testing {

Box DeskPlaces::dateRowBox(std::size_t index) const {
    // No day of a test has more lines than the least.
    const double height = dateRowLook({}).height;
    const Box list = dateList();
    return {list.x, list.y + kDateListHeaderHeight + static_cast<double>(index) * height,
            kDateListWidth, height};
}

Point DeskPlaces::dateRow(std::size_t index) const {
    return middleOf(dateRowBox(index));
}

Box DeskPlaces::dateRowLight(std::size_t index) const {
    const Box row = dateRowBox(index);
    return {row.x + kDateIndicator.x, row.y + kDateIndicator.y, kDateIndicator.width,
            kDateIndicator.height};
}

}  // namespace sonavault::testing
