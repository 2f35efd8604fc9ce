#pragma once

#include <filesystem>
#include <functional>

namespace sonavault {

/// Shows a file, selected, in the desktop's file viewer, without waiting for it. `otherwise` is
/// called, on the main thread, when the desktop has none that can select a file.
///
/// Thread: main.
void showInFileViewer(const std::filesystem::path& file, std::function<void()> otherwise);

}  // namespace sonavault
