#pragma once

#include "Providers/Provider.h"
#include "Tools/ArgumentStream.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// Turns the arguments of an artifact's call, as they come, into the tool's events.
class ArtifactWriter {
public:
    /// In order; telling them may end the answer, and the writer with it.
    using Events = std::vector<ProviderTool>;

    ArtifactWriter();

    void begin(Events& events);
    void feed(std::string_view arguments, Events& events);
    void finish(Events& events);

    bool hasStarted() const { return hasStarted_; }
    bool hasFinished() const { return hasFinished_; }
    /// The arguments are all there.
    bool isComplete() const { return stream_.isComplete(); }
    /// By which the model can name it later.
    const std::string& id() const { return id_; }

private:
    void tellId(Events& events);
    void flush(Events& events);

    ArgumentStream stream_;
    bool hasStarted_ = false;
    bool hasFinished_ = false;
    bool idTold_ = false;
    std::string id_;
    std::string givenId_;
    std::string title_;
    std::string kind_;
    std::string text_;
    // Of the title or the text: not told yet, so that not every few letters are a frame.
    std::string pendingKey_;
    std::string pending_;
};

}
