#pragma once

namespace sonavault {

/// Makes screen readers meet SVTabBarView as a list of tabs, of which one is selected and each can
/// be pressed. Works once for the whole program; further calls do nothing.
///
/// Thread: main.
void installTabAccessibility();

}  // namespace sonavault
