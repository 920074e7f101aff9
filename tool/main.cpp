#include "commands/Commands.h"

int main(int argc, char** argv) {
    return orbitwalk::tool::runProgram(argc, argv);
}
