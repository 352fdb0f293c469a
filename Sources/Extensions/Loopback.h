#pragma once

#include <QUrl>

namespace Korvi {

// Whether the URL's host is this machine: 127.0.0.0/8, ::1 or localhost. Only there may traffic go unencrypted.
bool isLoopback(const QUrl& url);

}
