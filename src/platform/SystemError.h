#pragma once

#include <string>
#include <system_error>

namespace sonavault {

/// What the system says of an error number: "Permission denied".
///
/// Thread: any.
inline std::string systemWords(int error) {
    return std::generic_category().message(error);
}

}  // namespace sonavault
