#pragma once

#include <QLoggingCategory>

namespace Korvi {

// Log lines have the form "🔌 [ChatService] text". They carry no token, message text or address of the user, and
// nothing hangs on them.
Q_DECLARE_LOGGING_CATEGORY(lcPlatform)

// Time, category and text on standard error. For main().
void installLogFormat();

}
