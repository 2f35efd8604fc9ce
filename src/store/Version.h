#pragma once

namespace sonavault {

/// The program's version, as the window's title, the manifests and the hub tell it.
inline constexpr auto kSonavaultVersion = "0.1.128";

}  // namespace sonavault
