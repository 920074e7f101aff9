#include "commands/Commands.h"

namespace orbitwalk::tool {

void addInspectCommand(CLI::App&) {}

}  // namespace orbitwalk::tool
