#include "Backend/ErrorText.h"

#include "Backend/APIError.h"

namespace Korvi {

QString errorText(const std::exception& error) {
    if (const auto* api = dynamic_cast<const APIError*>(&error))
        return api->errorDescription();
    if (const auto* url = dynamic_cast<const URLError*>(&error))
        return url->description;
    return QString::fromUtf8(error.what());
}

}
