#pragma once

#include <QMap>
#include <QUrl>

namespace Korvi {

// The pairs of "a=1&b=2", without percent-encoding; where that is broken, the text as it stands. A part that has not
// exactly one "=" is left out.
QMap<QString, QString> parseURLFragment(const QString& fragment);

// What a redirect says, in its query and in its fragment: of the two, the fragment counts.
QMap<QString, QString> callbackParameters(const QUrl& redirect);

}
