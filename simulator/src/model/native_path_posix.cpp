#include "native_path.h"

namespace simulator {

std::filesystem::path nativePath(const std::string& name) {
    return name;
}

}  // namespace simulator
