#include "exit_codes.h"

#include <cstdio>

namespace host {

std::string exitCodeHelp() {
    std::string text = "Exit codes:\n";
    for (const ExitCodeMeaning& row : kExitCodes) {
        char number[16];
        std::snprintf(number, sizeof number, "%5d  ", static_cast<int>(row.code));
        text += number;
        text += row.meaning;
        text += '\n';
    }
    return text;
}

}  // namespace host
