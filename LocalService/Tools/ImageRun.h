#pragma once

#include "Tools/ToolBox.h"

namespace korvi::service {

/// A picture from the endpoint's "/images/generations", kept as a file.
class ImageRun : public ToolRun {
public:
    ImageRun(asio::io_context& io, CurlLoop& curl, FileStore& files, const ToolSettings& settings, std::string prompt,
        ToolOwner owner, ToolBox::Emit emit, ToolBox::Done done);

private:
    void begin();
    HttpPost transferOf(std::string url);
    void generated(const HttpOutcome& outcome);
    void fetched(const HttpOutcome& outcome);
    void keep(const std::string& bytes);
    void fail(const std::string& why);
    void finish(nlohmann::json content, ToolResult result);
    void start(HttpPost post, void (ImageRun::*ended)(const HttpOutcome&));

    asio::io_context& io_;
    CurlLoop& curl_;
    FileStore& files_;
    ToolSettings settings_;
    std::string prompt_;
    ToolOwner owner_;
    ToolBox::Emit emit_;
    ToolBox::Done done_;
    long status_ = 0;
    std::string body_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // Last: destroyed first, so that nothing above is called once they are going.
    asio::steady_timer limit_;
    std::shared_ptr<void> transfer_;
};

}
