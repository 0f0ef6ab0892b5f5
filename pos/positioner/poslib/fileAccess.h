/**
 * @file
 * Reading whole files, embedded resources included.
 */
#ifndef POS_FILEACCESS_H
#define POS_FILEACCESS_H

#include <QByteArray>
#include <QString>
#include <optional>
#include <string>

namespace pos {

/**
 * A file name in the form that the file classes take.
 *
 * @param name the bytes of the name, as the command line or a configuration file gives them
 * @return the name; nothing where it is empty, holds a NUL, or does not convert back into the same bytes, so that a
 *     name in another encoding than the process's never stands for a different file
 */
std::optional<QString> fileNameFromBytes(const std::string& name);

/** Largest document that is read or written, bytes; a device may have no end. */
inline constexpr qint64 kMaxFileSize = qint64{256} * 1024 * 1024;

/**
 * The whole content of a file. A name beginning with ":" is an embedded resource.
 *
 * @param name file name, bytes as given
 * @param maxSize most bytes that the file may have, a whole number of KiB, or of MiB from 1 MiB on
 * @return the content; nothing where the file cannot be opened or read to its end
 * @throw std::runtime_error name + " is larger than 256 MiB", or what maxSize is
 */
std::optional<QByteArray> readFile(const std::string& name, qint64 maxSize = kMaxFileSize);

/** The same of a file that must be there. @throw std::runtime_error name + " could not be opened", and as readFile */
QByteArray loadFile(const std::string& name);

} // namespace pos

#endif
