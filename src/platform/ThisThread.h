#pragma once

#include <string>

namespace sonavault {

/// What a debugger shows for the calling thread. Range: up to 15 characters are shown.
void nameThisThread(const std::string& name);

/// Lets every other thread of the program, and the desk's other programs, go first.
void yieldToOthersOnThisThread();

}  // namespace sonavault
