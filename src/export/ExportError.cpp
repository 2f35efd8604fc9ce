#include "export/ExportError.h"

namespace sonavault {

std::string ExportError::errorDescription() const {
    switch (kind_) {
        case Kind::readFailed:
            return "Could not read source: " + detail_;
        case Kind::writeFailed:
            return "Could not write output: " + detail_;
        case Kind::unsupportedSourceFormat:
            return "Export only supports MP3 sources right now. The loaded recording is ." +
                   detail_ + " (legacy). Open or record an MP3 first.";
        case Kind::noSource:
            return "No source recording loaded.";
        case Kind::noSelections:
            return "No selections to export.";
        case Kind::noValidFrames:
            break;
    }
    return "Source file has no MP3 frames overlapping any selection.";
}

}  // namespace sonavault
