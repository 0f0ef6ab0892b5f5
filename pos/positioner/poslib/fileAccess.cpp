#include "fileAccess.h"

#include <QFile>
#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

constexpr qint64 kKibibyte = 1024;
constexpr qint64 kMebibyte = 1024 * kKibibyte;

/** @param size a whole number of KiB */
std::string sizeText(qint64 size) {
    return size < kMebibyte ? std::to_string(size / kKibibyte) + " KiB" : std::to_string(size / kMebibyte) + " MiB";
}

} // namespace

std::optional<QString> fileNameFromBytes(const std::string& name) {
    const QByteArray bytes = QByteArray::fromStdString(name);
    // The decoder drops a byte order mark at the start, where it can be part of a name.
    const QString decoded = QFile::decodeName('/' + bytes).mid(1);
    if (bytes.isEmpty() || bytes.contains('\0') || QFile::encodeName(decoded) != bytes) {
        return std::nullopt;
    }
    return decoded;
}

std::optional<QByteArray> readFile(const std::string& name, qint64 maxSize) {
    const std::optional<QString> fileName = fileNameFromBytes(name);
    if (!fileName) {
        return std::nullopt;
    }
    QFile file(*fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    QByteArray content;
    content.reserve(static_cast<int>(std::min(file.size(), maxSize)));
    // A pipe has no size.
    const qint64 atOnce = std::clamp(file.size() + 1, 64 * kKibibyte, kMebibyte);
    for (QByteArray piece = file.read(atOnce); !piece.isEmpty(); piece = file.read(atOnce)) {
        content += piece;
        if (content.size() > maxSize) {
            throw std::runtime_error(name + " is larger than " + sizeText(maxSize));
        }
    }
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    return content;
}

QByteArray loadFile(const std::string& name) {
    const std::optional<QByteArray> content = readFile(name);
    if (!content) {
        throw std::runtime_error(name + " could not be opened");
    }
    return *content;
}

} // namespace pos
