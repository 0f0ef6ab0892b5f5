#include "CommandLine.h"
#include "ProcessState.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>

int main(int argc, char* argv[]) {
    // The XML library orders attributes by a hash with a random seed; with this one the same input gives the same
    // bytes.
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    try {
        return pos::runCommandLine(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "There is not enough memory to configure the field definition" << std::endl;
        return 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
