#include "LibraryCall.h"

#include "CheckResources.h"
#include "EmbeddedResources.h"
#include "Version.h"

#include <QHash>
#include <QTextCodec>
#include <pthread.h>

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
    qSetGlobalQHashSeed(0);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInitResources_config_files();
    qInitResources_plate_files();
    qInitResources_check_files();
    Py_AtExit([] { callMutex().lock(); }); // for good
    pthread_atfork([] { callMutex().lock(); }, [] { callMutex().unlock(); }, [] { callMutex().unlock(); });
}

PosConfig openConfig(const std::string& file) {
    return {"configure_version", configure_version, file.c_str(), PosConfig::XML};
}

} // namespace pos
