#include "CommandLine.h"
#include "ProcessState.h"

#include <cstdlib>
#include <exception>
#include <iostream>

int main(int argc, char* argv[]) {
    // The XML library orders attributes by a hash with a random seed; with this one the same input gives the same
    // bytes.
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    try {
        return pos::runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
