#include "Progress.h"

#include <chrono>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace pos {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 1s;
constexpr auto kInterval = 200ms;

} // namespace

Progress::Progress(std::size_t documents) : documents_(documents) {
    if (::isatty(STDERR_FILENO) != 1) {
        return;
    }
    try {
        writer_ = std::thread([this] { show(); });
    } catch (const std::system_error&) {
        // The work goes on without the line.
    }
}

Progress::~Progress() {
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
        hide();
    }
    changed_.notify_one();
    if (writer_.joinable()) {
        writer_.join();
    }
}

void Progress::next() {
    const std::lock_guard lock(mutex_);
    ++document_;
}

void Progress::interrupt(const std::function<void()>& write) {
    const std::lock_guard lock(mutex_);
    hide();
    write();
}

void Progress::show() {
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kPatience, [this] { return isOver_; });
    while (!isOver_) {
        const auto passed = std::chrono::steady_clock::now() - begin;
        std::cerr << "\r\x1b[KChecking document " << document_ << " of " << documents_ << ", "
                  << std::chrono::duration_cast<std::chrono::seconds>(passed).count() << " s" << std::flush;
        isShown_ = true;
        changed_.wait_for(lock, kInterval, [this] { return isOver_; });
    }
}

void Progress::hide() {
    if (isShown_) {
        std::cerr << "\r\x1b[K" << std::flush;
        isShown_ = false;
    }
}

} // namespace pos
