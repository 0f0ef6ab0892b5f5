/**
 * @file
 * Calling the library from Python.
 */
#ifndef POS_LIBRARYCALL_H
#define POS_LIBRARYCALL_H

#include <QtGlobal>
#include <mutex>
#include <pybind11/pybind11.h>
#include <utility>

namespace pos {

/**
 * One call of the library at a time: it has an optical model, a plate geometry and a data model version that are
 * process-wide. Each call begins without a data model version, and with a library that prints nothing.
 */
class LibraryCall {
public:
    LibraryCall();
    ~LibraryCall();
    LibraryCall(const LibraryCall&) = delete;
    LibraryCall& operator=(const LibraryCall&) = delete;
    LibraryCall(LibraryCall&&) = delete;
    LibraryCall& operator=(LibraryCall&&) = delete;

private:
    std::lock_guard<std::mutex> lock_;
    QtMessageHandler previousHandler_;
};

/** Does something in the library while other threads of the interpreter go on. @param work touches no object of it */
template <typename Work> auto inLibrary(Work work) {
    const pybind11::gil_scoped_release released;
    const LibraryCall call;
    return work();
}

/** Lets Ctrl-C end a long call between two parts of its work. */
inline void endAtSignals() {
    if (PyErr_CheckSignals() != 0) {
        throw pybind11::error_already_set();
    }
}

/** Makes what the library uses of its process fit for it; once, when the module is loaded. */
void prepareLibrary();

} // namespace pos

#endif
