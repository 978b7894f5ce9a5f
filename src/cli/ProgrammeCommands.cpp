#include "Commands.h"

namespace qv {

const std::vector<CliCommand>& programmeCommands() {
    static const std::vector<CliCommand> commands;
    return commands;
}

} // namespace qv
