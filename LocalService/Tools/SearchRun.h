#pragma once

#include "Tools/ToolBox.h"

#include <string_view>

namespace korvi::service {

/// A search's answer as the client wants it, and as a model can cite from it.
struct SearchFindings {
    nlohmann::json content;
    std::string forModel;
};

/// From the JSON of a SearXNG-compatible endpoint; whatever in it has another form is left out. `seconds` it took.
SearchFindings searchFindings(const std::string& query, const nlohmann::json& answer, double seconds);

class SearchRun : public ToolRun {
public:
    SearchRun(asio::io_context& io, CurlLoop& curl, const std::string& url, std::string query, ToolBox::Emit emit,
        ToolBox::Done done);

private:
    void begin(CurlLoop& curl, HttpPost post);
    void end(const HttpOutcome& outcome);

    std::string query_;
    ToolBox::Emit emit_;
    ToolBox::Done done_;
    long status_ = 0;
    std::string body_;
    std::chrono::steady_clock::time_point started_{};
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // Last: destroyed first, so that nothing above is called once it is going.
    std::shared_ptr<void> transfer_;
};

}
