#include "LibraryCall.h"

#include "CheckResources.h"
#include "EmbeddedResources.h"
#include "Version.h"

#include <QHash>
#include <QTextCodec>

namespace pos {

namespace {

/** Held by the one call that may use what is process-wide. */
std::mutex& callMutex() {
    static std::mutex mutex;
    return mutex;
}

void dropMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*message*/) {}

} // namespace

LibraryCall::LibraryCall() : lock_(callMutex()), previousHandler_(qInstallMessageHandler(dropMessage)) {
    datamver.clear();
}

LibraryCall::~LibraryCall() {
    qInstallMessageHandler(previousHandler_);
}

void prepareLibrary() {
    // The XML library orders attributes by a hash with a random seed; with this one the same input gives the bytes of
    // the program.
    qSetGlobalQHashSeed(0);
    // Names of files are UTF-8 in every locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInitResources_config_files();
    qInitResources_plate_files();
    qInitResources_check_files();
}

} // namespace pos
