/// Shorthand for the plug-in's logger: `GIGE_LOG(Warning) << "text";`
#pragma once

#include "logging.h"

namespace zelt_gige_camera {

/// Looked up once, when the library is loaded.
inline diagnostics::Logger& s_gige_log = diagnostics::unilogger_zelt_plugin_gige_camera();

}  // namespace zelt_gige_camera

#define GIGE_LOG(severity) ZELT_LOG(zelt_gige_camera::s_gige_log, severity)
