#include <QtGlobal>

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}
