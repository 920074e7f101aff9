#include "commands/Commands.h"

namespace orbitwalk::tool {

void addSimulateCommand(CLI::App&) {}

}  // namespace orbitwalk::tool
