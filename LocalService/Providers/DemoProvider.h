#pragma once

#include "Core/Asio.h"
#include "Files/FileStore.h"
#include "Providers/Provider.h"

#include <chrono>

namespace korvi::service {

/// Answers from built-in texts and files, in small steps as a model would.
class DemoProvider : public Provider {
public:
    /// `delay` is the time between two steps.
    DemoProvider(asio::io_context& io, FileStore& files, std::chrono::milliseconds delay)
        : io_(io)
        , files_(files)
        , delay_(delay) {}

    std::unique_ptr<ProviderStream> start(const ProviderRequest& request, ProviderSink sink) override;

private:
    asio::io_context& io_;
    FileStore& files_;
    std::chrono::milliseconds delay_;
};

}
