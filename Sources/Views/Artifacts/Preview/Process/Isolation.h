#pragma once

namespace Korvi {

// Takes this process and all that it starts out of the network, where the kernel lets it: from then on there is not even
// a loopback device. False where it does not. Before any thread is started.
bool leaveNetwork();

}
