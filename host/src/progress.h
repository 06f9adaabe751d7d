#pragma once

#include <cstdint>
#include <string>

namespace host {

struct Progress {
    double seconds = 0;  ///< length of the recording
    double elapsed = 0;
    std::uint64_t frames = 0;
    std::uint64_t lost = 0;
    std::string directory;
};

/// "recording 5.0 s to DIR   <bar> 60 %   300 frames   0 lost" in at most `width` columns; where there is
/// too little room, the directory is shortened first. Colour is for terminals.
std::string progressLine(const Progress& progress, std::size_t width, bool colour);

}  // namespace host
