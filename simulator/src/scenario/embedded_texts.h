/// The files of simulator/scenarios, compiled into the library.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace simulator {

struct EmbeddedText {
    const char* name;  ///< of the file, without its ending
    const unsigned char* bytes;
    std::size_t size;

    std::string text() const { return {bytes, bytes + size}; }
};

/// "schema", and the ready scenarios in alphabetical order.
const std::vector<EmbeddedText>& embeddedTexts();

}  // namespace simulator
