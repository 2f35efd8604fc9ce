#pragma once

namespace sonavault {

/// From now on a peer or a reader that goes away is an error to handle, not the end of the process.
/// Thread: main, before there are others.
void ignoreBrokenPipes();

}  // namespace sonavault
