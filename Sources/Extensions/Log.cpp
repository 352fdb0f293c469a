#include "Log.h"

namespace Korvi {

Q_LOGGING_CATEGORY(lcPlatform, "korvi.platform", QtInfoMsg)

void installLogFormat() {
    qSetMessagePattern(QStringLiteral("%{time hh:mm:ss.zzz} %{message}"));
}

}
