#include "CommandLine.h"
#include "ProcessState.h"

#include <QDomDocument>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>

int main(int argc, char* argv[]) {
    // The XML library orders attributes by a hash with a random seed; with this one the same input gives the same
    // bytes.
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    try {
        // Never taken apart, which would be a tenth of a run: the system takes the memory back.
        static QDomDocument* const document = std::make_unique<QDomDocument>().release();
        return pos::runCommandLine(argc, argv, document);
    } catch (const std::bad_alloc&) {
        std::cerr << "There is not enough memory to configure the field definition" << std::endl;
        return 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
