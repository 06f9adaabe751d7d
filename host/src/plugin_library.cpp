#include "plugin_library.h"

#include <bit>

#include "host_failure.h"

namespace host {
namespace {

constexpr std::uint32_t kInterfaceVersion = 1;

HostFailure loadFailure(const std::filesystem::path& file, const platform::LoadError& error) {
    using platform::LoadProblem;
    const std::string vendor = platform::kVendorFileName;
    switch (error.problem) {
        case LoadProblem::Missing:
            return {ExitCode::PluginMissing,
                    "There is no plug-in library " + file.string() + "; name the right file with --plugin."};
        case LoadProblem::VendorMissing:
            return {ExitCode::VendorMissing, "The camera vendor's library " + vendor +
                                                 " was not found; put it beside the plug-in library " +
                                                 file.string() +
                                                 " or into a folder of the loader's search path."};
        case LoadProblem::VendorWrong:
            return {ExitCode::VendorWrong, "The camera vendor's library " + vendor +
                                               " that was found is not the right one (" + error.text +
                                               "); install the vendor's version 1.x."};
        case LoadProblem::Other:
            break;
    }
    return {ExitCode::PluginMissing, "The plug-in library " + file.string() + " cannot be loaded (" +
                                         error.text + "); name the right file with --plugin."};
}

HostFailure notAPlugin(const std::filesystem::path& file, const std::string& why) {
    return {ExitCode::NotAPlugin,
            file.string() + " is no camera plug-in: " + why + "; name the right file with --plugin."};
}

}  // namespace

PluginSource findCreator(std::shared_ptr<platform::Library> library, const std::filesystem::path& file) {
    auto* getName = std::bit_cast<ZeltGetPluginDllName*>(library->symbol("ZELT_getPluginDllName"));
    auto* getFactory = std::bit_cast<ZeltGetPluginFactory*>(library->symbol("ZELT_getPluginFactory"));
    if (getName == nullptr) throw notAPlugin(file, "it does not export ZELT_getPluginDllName");
    if (getFactory == nullptr) throw notAPlugin(file, "it does not export ZELT_getPluginFactory");

    const char* name = getName();
    plugin_api::IfPluginCreator* creator = getFactory();
    if (name == nullptr || creator == nullptr) throw notAPlugin(file, "it has no creator of plug-ins");
    if (const std::uint32_t version = creator->getInterfaceVersion(); version != kInterfaceVersion) {
        throw notAPlugin(file, "its interface has version " + std::to_string(version) + " instead of 1");
    }
    return {creator, name, std::move(library)};
}

PluginSource loadPlugin(const std::filesystem::path& file) {
    platform::LoadError error;
    std::shared_ptr<platform::Library> library = platform::loadLibrary(file, error);
    if (!library) throw loadFailure(file, error);
    return findCreator(std::move(library), file);
}

}  // namespace host
