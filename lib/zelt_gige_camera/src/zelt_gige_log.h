/// Shorthand for the plug-in's logger: `GIGE_LOG(Warning) << "text";`
#pragma once

#include "logging.h"

#define GIGE_LOG(severity) ZELT_LOG(diagnostics::unilogger_zelt_plugin_gige_camera(), severity)
