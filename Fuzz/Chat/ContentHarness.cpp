// A stored message: whatever decodes must encode, and decode back to an equal value, or the disk cache loses it.
#include "ChatMessage.h"

#include <cstdlib>

using namespace Korvi;

namespace {

template <class T>
void roundTrip(const QByteArray& bytes) {
    std::optional<T> first;
    try {
        first = decodeJson<T>(bytes);
    } catch (const DecodingError& error) {
        if (error.keyPath.isEmpty() || error.reason.isEmpty())
            std::abort();
        return;
    }
    const QByteArray stored = QJsonDocument(first->toJson()).toJson(QJsonDocument::Compact);
    // A DecodingError here is a crash of the harness, as it should be.
    if (!(decodeJson<T>(stored) == *first))
        std::abort();
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    roundTrip<ChatMessage>(bytes);
    roundTrip<MessageContent>(bytes);
    return 0;
}
