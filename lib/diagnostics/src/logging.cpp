#include "logging.h"

#include <locale>

#include <boost/log/keywords/channel.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/global_logger_storage.hpp>

namespace diagnostics {
namespace {

namespace keywords = boost::log::keywords;

}  // namespace

// The storage keeps one logger per tag type. The tags live here and not in the header, because a logger
// that is made by code of the plug-in would die with the plug-in while the storage still holds it.
namespace unilog_tags {
BOOST_LOG_INLINE_GLOBAL_LOGGER_CTOR_ARGS(ZeltPluginGigeCamera, Logger,
                                         (keywords::severity = UniLogSeverityLevel::Info)(
                                             keywords::channel = std::string("zelt_plugin_gige_camera")))
BOOST_LOG_INLINE_GLOBAL_LOGGER_CTOR_ARGS(
    ConfigItems, Logger,
    (keywords::severity = UniLogSeverityLevel::Info)(keywords::channel = std::string("CONFIG_ITEMS")))
}  // namespace unilog_tags

Logger& unilogger_zelt_plugin_gige_camera() {
    return unilog_tags::ZeltPluginGigeCamera::get();
}

Logger& unilogger_CONFIG_ITEMS() {
    return unilog_tags::ConfigItems::get();
}

std::ios& classicNumbers(std::ios& stream) {
    stream.imbue(std::locale::classic());
    return stream;
}

}  // namespace diagnostics
