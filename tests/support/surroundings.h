#ifndef POS_TESTS_SURROUNDINGS_H
#define POS_TESTS_SURROUNDINGS_H

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/resource.h>

/** Makes a folder the working directory of this process until the object goes. */
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& folder) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    WorkingFolder(WorkingFolder&&) = delete;
    WorkingFolder& operator=(WorkingFolder&&) = delete;

private:
    std::filesystem::path before_;
};

/** Gives an environment variable of this process a value, or takes it away, until the object goes. */
class EnvironmentVariable {
public:
    EnvironmentVariable(const std::string& name, const std::optional<std::string>& value) : name_(name) {
        if (const char* const before = std::getenv(name.c_str())) {
            before_ = before;
        }
        set(value);
    }
    ~EnvironmentVariable() {
        set(before_);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    EnvironmentVariable(EnvironmentVariable&&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable&&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> before_;
};

/** Lets no file of this process grow beyond a size, in bytes, until the object goes. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const struct rlimit limit { size, before_.rlim_max };
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

private:
    struct rlimit before_ {};
};

#endif
