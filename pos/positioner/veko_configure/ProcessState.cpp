#include "ProcessState.h"

#include <QTextCodec>
#include <QtGlobal>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace pos {

namespace {

/** Opens the root folder on every closed standard descriptor: it is always there, and no write to it succeeds. */
void occupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF) {
            // The file gets the lowest free descriptor, which is this one.
            static_cast<void>(::open("/", O_RDONLY | O_DIRECTORY));
        }
    }
}

void dropMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*message*/) {}

} // namespace

void prepareProcess() {
    occupyStandardDescriptors();
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInstallMessageHandler(dropMessage);
}

} // namespace pos
