/**
 * @file
 * How far a command has come, for whoever waits for it.
 */
#ifndef POS_PROGRESS_H
#define POS_PROGRESS_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>

namespace pos {

/**
 * A line on the error stream, "Checking document 3 of 500, 2 s", that appears after a second of work, is written anew
 * several times a second and goes away at the end. Only a terminal gets it.
 */
class Progress {
public:
    /** Begins to wait. @param documents how many there are */
    explicit Progress(std::size_t documents);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress(Progress&&) = delete;
    Progress& operator=(const Progress&) = delete;
    Progress& operator=(Progress&&) = delete;

    /** Goes on to the next document. */
    void next();

    /** Calls a function that reads or writes whole lines, with the own line out of their way. */
    void interrupt(const std::function<void()>& write);

private:
    void show();
    void hide();

    const std::size_t documents_;
    std::mutex mutex_; ///< of all below
    std::condition_variable changed_;
    std::size_t document_ = 0;
    bool isShown_ = false;
    bool isOver_ = false;
    std::thread writer_; ///< runs show(); none where there is no terminal
};

} // namespace pos

#endif
