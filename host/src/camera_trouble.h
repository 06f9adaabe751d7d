/// Cameras that could not be opened, as sentences.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "message_board.h"
#include "session.h"

namespace host {

/// Says of those of the `concerned` cameras that are not open why that is and what to do; `messages` are what
/// the cameras have told so far. Empty when all are open.
std::string notOpenSentence(Session& session, const std::set<std::uint32_t>& concerned,
                            const std::vector<ChannelMessage>& messages);

}  // namespace host
