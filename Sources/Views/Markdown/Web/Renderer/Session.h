#pragma once

#include "ClientLine.h"

namespace Korvi {

class Renderer;

// A renderer process at work: requests come as lines of JSON, {"id": 7, ...}, and go back as {"id": 7, "answer": ...},
// in the order in which they are done.
class Session {
public:
    // Both descriptors stay the caller's.
    Session(Renderer& renderer, int input, int output);

private:
    void take(const QByteArray& line);

    Renderer& m_renderer;
    ClientLine m_client;
};

}
