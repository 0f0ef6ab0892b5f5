#ifndef POS_TESTS_TEMPORARYFOLDER_H
#define POS_TESTS_TEMPORARYFOLDER_H

#include <string>

/** A folder of a test's own, removed with all that is in it when the object goes. */
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    /** The folder's own absolute name. */
    const std::string& name() const {
        return name_;
    }
    /** The absolute name of a file in the folder. */
    std::string path(const std::string& file) const;
    /** Writes a file with these bytes. @return its absolute name */
    std::string write(const std::string& file, const std::string& content) const;
    /** The bytes of a file. Fails the test when there is no such file. */
    std::string read(const std::string& file) const;
    bool contains(const std::string& file) const;

private:
    std::string name_;
};

/** The bytes of any file, by its name. Fails the test when it cannot be read. */
std::string readBytes(const std::string& name);

#endif
