/**
 * @file
 * The configuration store: the description of telescope and instrument.
 */
#ifndef POS_POSCONFIG_H
#define POS_POSCONFIG_H

#include <boost/property_tree/ptree.hpp>
#include <string>

namespace pos {

/**
 * A tree of named values, read once from a configuration file and then only read.
 *
 * Values are addressed by keys whose levels are separated by dots, such as "telescope.latitude". For an XML file the
 * keys are relative to the root element, whose attributes lie under "<xmlattr>"; for an INFO file they start at the
 * top of the file.
 */
class PosConfig {
public:
    /** File formats. With any other value the file is not parsed, and the tree is empty. */
    enum format : int { INFO = 0, XML = 1 };

    /**
     * Loads a configuration file.
     *
     * The "datamver" of the first XML file loaded in a process becomes pos::datamver.
     *
     * @param filename name of the file; a name beginning with ":" is an embedded resource; null means the value of
     *     the environment variable VANTE_POS_CONFIG
     * @param fileFormat how to parse the file
     * @throw std::runtime_error "VANTE_POS_CONFIG environment variable not set"
     * @throw std::runtime_error "Unable to open config file: " + name
     * @throw std::runtime_error name + " is larger than 1 MiB", or 16 KiB for an INFO file
     * @throw std::runtime_error as decodeXml and parseXml, for an XML file; the property tree's own reader reads a
     *     malformed one, unless it has more than 256 tags
     * @throw std::runtime_error "data model version mismatch", for an XML file whose root has another "datamver" than
     *     pos::datamver
     * @throw boost::property_tree::ptree_error for text that does not parse, or an XML file without "datamver"
     */
    PosConfig(const char* filename, format fileFormat);

    /**
     * Loads a configuration file and checks which version of the program it is written for.
     *
     * @param versionKey key of the version in the file
     * @param expectedVersion the text that must stand there, byte for byte
     * @param filename as above
     * @param fileFormat as above
     * @throw std::runtime_error "config file version mismatch", and whatever the other constructor throws
     * @throw boost::property_tree::ptree_bad_path for a file without the version key
     */
    PosConfig(const std::string& versionKey, const std::string& expectedVersion, const char* filename,
              format fileFormat);

    /**
     * The value at a key.
     *
     * @throw boost::property_tree::ptree_bad_path for a missing key, with the path in its message
     * @throw boost::property_tree::ptree_bad_data for a value that is not a T, with the type and the path in its
     * message
     */
    template <typename T> T get(const std::string& key) const {
        try {
            return tree_.get<T>(key);
        } catch (const boost::property_tree::ptree_bad_data& error) {
            throw boost::property_tree::ptree_bad_data(error.what() + (" (" + key + ")"), error.data<std::string>());
        }
    }

    /** The value at a key, which is in degrees in the file, in radians. Throws as get does. */
    double getAngle(const std::string& key) const;

    /**
     * The value at a key as a file name.
     *
     * @return a name beginning with ":" (an embedded resource) or "/" unchanged; any other as an absolute name, taken
     *     relative to the configuration file's own folder
     * @throw boost::property_tree::ptree_error as get does
     * @throw boost::filesystem::filesystem_error where the configuration file's name is relative and the working
     *     directory is unknown, for example because it has been removed
     */
    std::string getFilename(const std::string& key) const;

    /** A name as a file name, as getFilename makes one of a value. */
    std::string filenameOf(const std::string& name) const;

    /** The name of the configuration file, as it was given. */
    const std::string& name() const {
        return name_;
    }

private:
    void takeRoot(const boost::property_tree::ptree& document);

    boost::property_tree::ptree tree_;
    std::string name_;
    std::string directory_; ///< parent path of the configuration file's name as given
};

} // namespace pos

#endif
