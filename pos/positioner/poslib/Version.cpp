#include "Version.h"

namespace pos {

const std::string configure_version = "3.3.5";
std::string datamver;

} // namespace pos
