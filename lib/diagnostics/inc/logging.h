/// Loggers of the plug-in. The host owns the logging core (sinks, filters, formatting); this library only
/// creates its loggers and pushes records.
///
/// [any thread] Loggers may be used from any thread; the text of a record that the core does not take is
/// never formatted. Numbers are written in the classic locale, whatever locale the host has set.
#pragma once

#include <ios>
#include <string>

#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include "zelt_base_export.h"

/// Severity of a record; the attribute "Severity" of every record holds a value of this type.
namespace UniLogSeverityLevel {
enum T : unsigned {
    Trace = 0,    ///< entry and exit of host-facing operations
    Debug = 1,    ///< progress of one channel inside stop
    Detail = 2,   ///< progress of enumeration, initialisation and start
    Info = 3,     ///< one-time facts
    Notice = 4,   ///< not used here
    Warning = 5,  ///< recoverable trouble
    Error = 6     ///< failures
};
}  // namespace UniLogSeverityLevel

namespace diagnostics {

/// Thread-safe logger; its channel is the attribute "Channel" (a std::string) of every record.
using Logger = boost::log::sources::severity_channel_logger_mt<UniLogSeverityLevel::T, std::string>;

/// Logger of channel "zelt_plugin_gige_camera": everything but the configuration items.
/// Created on first use, registered in the core's global logger storage, alive until the process ends.
ZELT_BASE_API Logger& unilogger_zelt_plugin_gige_camera();

/// Logger of channel "CONFIG_ITEMS": the configuration item library. Lives as the other one.
ZELT_BASE_API Logger& unilogger_CONFIG_ITEMS();

/// Stream manipulator that makes numbers independent of the host's locale.
ZELT_BASE_API std::ios& classicNumbers(std::ios& stream);

}  // namespace diagnostics

/// Opens a record of the severity named and streams into it: `ZELT_LOG(logger, Warning) << "text";`
/// Nothing to the right is evaluated when the core takes no such record. A record whose formatting throws
/// is not pushed.
#define ZELT_LOG(logger, severity) \
    BOOST_LOG_SEV((logger), ::UniLogSeverityLevel::severity) << ::diagnostics::classicNumbers
