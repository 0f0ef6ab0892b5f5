#include "fileAccess.h"

#include <QFile>

namespace pos {

std::optional<QString> fileNameFromBytes(const std::string& name) {
    const QByteArray bytes = QByteArray::fromStdString(name);
    // The decoder drops a byte order mark at the start, where it can be part of a name.
    const QString decoded = QFile::decodeName('/' + bytes).mid(1);
    if (bytes.isEmpty() || bytes.contains('\0') || QFile::encodeName(decoded) != bytes) {
        return std::nullopt;
    }
    return decoded;
}

std::optional<QByteArray> readFile(const std::string& name, QIODevice::OpenMode mode) {
    const std::optional<QString> fileName = fileNameFromBytes(name);
    if (!fileName) {
        return std::nullopt;
    }
    QFile file(*fileName);
    if (!file.open(QIODevice::ReadOnly | mode)) {
        return std::nullopt;
    }
    QByteArray content = file.readAll();
    // A read that fails half-way gives a short count; only the next one tells why.
    if (file.pos() < file.size()) {
        content += file.readAll();
    }
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    return content;
}

} // namespace pos
