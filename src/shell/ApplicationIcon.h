#pragma once

#include <QIcon>

namespace sonavault {

/// The program's emblem, drawn at every usual size: a round badge with a white sound wave.
///
/// Thread: main, once the application object exists.
QIcon applicationIcon();

}  // namespace sonavault
