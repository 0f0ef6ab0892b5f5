/**
 * @file
 * Calling the library from Python.
 */
#ifndef POS_LIBRARYCALL_H
#define POS_LIBRARYCALL_H

#include "PosConfig.h"

#include <QtGlobal>
#include <exception>
#include <mutex>
#include <pybind11/pybind11.h>
#include <string>
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

/** Lets other threads of the interpreter go on. */
class InterpreterReleased {
public:
    InterpreterReleased() = default;
    /** The interpreter ends a thread here when it shuts down, by an exception that must pass. */
    ~InterpreterReleased() noexcept(false) {
        PyEval_RestoreThread(state_);
    }
    InterpreterReleased(const InterpreterReleased&) = delete;
    InterpreterReleased& operator=(const InterpreterReleased&) = delete;
    InterpreterReleased(InterpreterReleased&&) = delete;
    InterpreterReleased& operator=(InterpreterReleased&&) = delete;

private:
    PyThreadState* state_ = PyEval_SaveThread();
};

/** Does something while other threads of the interpreter go on. @param work uses no Python object */
template <typename Work> auto withoutInterpreter(Work work) {
    std::exception_ptr failure;
    {
        const InterpreterReleased released;
        try {
            return work();
        } catch (...) {
            // Not on its way while the interpreter may end the thread.
            failure = std::current_exception();
        }
    }
    std::rethrow_exception(failure);
}

/** The same in the library, one call at a time. */
template <typename Work> auto inLibrary(Work work) {
    return withoutInterpreter([&] {
        const LibraryCall call;
        return work();
    });
}

/** Lets Ctrl-C end a long call between two parts of its work. */
inline void endAtSignals() {
    if (PyErr_CheckSignals() != 0) {
        throw pybind11::error_already_set();
    }
}

/**
 * Sets, once and for good, what the library needs of its process: the seed of Qt's hashes, with which the same document
 * gives the same bytes, and UTF-8 for Qt's names of files. A fork waits for the call under way, which its child would
 * otherwise wait for without end, and so does the end of the process, which takes apart what the call uses.
 */
void prepareLibrary();

/** The configuration of a run. @param file its name. @throw what a run throws that cannot read it */
PosConfig openConfig(const std::string& file);

} // namespace pos

#endif
