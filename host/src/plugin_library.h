#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host_platform.h"
#include "if_plugin_creator.h"

namespace host {

/// A library's creator, and the library itself, which must stay loaded as long as anything of it is used.
struct PluginSource {
    plugin_api::IfPluginCreator* creator = nullptr;
    std::string name;
    std::shared_ptr<platform::Library> library;
};

/// Loads a plug-in library and finds its creator by the two exported functions. Throws HostFailure when the
/// file, the functions or the camera vendor's library are missing or wrong.
PluginSource loadPlugin(const std::filesystem::path& file);

/// Finds the creator in a loaded library; `file` is for the sentence when it fails.
PluginSource findCreator(std::shared_ptr<platform::Library> library, const std::filesystem::path& file);

}  // namespace host
