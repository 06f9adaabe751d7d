#include <windows.h>

#include "native_path.h"

namespace simulator {

std::filesystem::path nativePath(const std::string& name) {
    const int length = static_cast<int>(name.size());
    std::wstring wide(name.size(), L'\0');  // never more characters than bytes
    const int written = ::MultiByteToWideChar(CP_ACP, 0, name.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(written));
    return wide;
}

}  // namespace simulator
