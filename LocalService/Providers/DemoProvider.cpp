#include "Providers/DemoProvider.h"

#include "Providers/DemoScript.h"

#include <optional>

namespace korvi::service {

namespace {

constexpr std::size_t pointsPerStep = 6;

/// The first `points` code points of `text`, taken off it.
std::string takePoints(std::string& text, std::size_t& at, std::size_t points) {
    const std::size_t begin = at;
    while (at < text.size() && points > 0) {
        ++at;
        while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U)
            ++at;
        --points;
    }
    return text.substr(begin, at - begin);
}

class DemoStream : public ProviderStream {
public:
    DemoStream(
        asio::io_context& io, std::chrono::milliseconds delay, DemoScript script, DemoFiles files, ProviderSink sink)
        : timer_(io)
        , delay_(delay * script.slowness)
        , steps_(std::move(script.steps))
        , files_(std::move(files))
        , sink_(std::move(sink)) {
        wait(1);
    }

private:
    void wait(int steps) {
        timer_.expires_after(delay_ * steps);
        // An expired timer's handler may already be queued when the stream is destroyed: it asks whether it is wanted.
        timer_.async_wait([this, wanted = std::weak_ptr(alive_)](const boost::system::error_code& error) {
            if (!error && !wanted.expired())
                step();
        });
    }

    void step() {
        // The sink may destroy this stream, and with it the stream's own copy of the sink.
        const auto sink = sink_;
        if (at_ == steps_.size())
            return sink(ProviderFinished{});
        DemoStep& current = steps_[at_];
        if (auto* speech = std::get_if<DemoSpeech>(&current)) {
            auto part = takePoints(speech->text, said_, pointsPerStep);
            if (said_ == speech->text.size())
                advance();
            wait(1);
            sink(ProviderDelta{speech->kind, std::move(part)});
        } else if (const auto* tool = std::get_if<DemoTool>(&current)) {
            try {
                ProviderTool event{tool->phase, tool->tool, tool->data(files_)};
                advance();
                wait(1);
                sink(std::move(event));
            } catch (const std::runtime_error& error) {
                // No room for the file, most likely.
                sink(ProviderFailed{error.what()});
            }
        } else if (const auto* pause = std::get_if<DemoPause>(&current)) {
            const int steps = pause->steps;
            advance();
            wait(steps);
        } else {
            sink(ProviderFailed{std::get<DemoFailure>(current).message});
        }
    }

    void advance() {
        ++at_;
        said_ = 0;
    }

    asio::steady_timer timer_;
    std::chrono::milliseconds delay_;
    std::vector<DemoStep> steps_;
    std::size_t at_ = 0;
    std::size_t said_ = 0;
    DemoFiles files_;
    ProviderSink sink_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

std::string textOf(const nlohmann::json& content) {
    std::string text;
    for (const auto& part : content)
        if (part.is_object() && part.value("type", "") == "text")
            text += part.value("text", "");
    return text;
}

}

std::unique_ptr<ProviderStream> DemoProvider::start(const ProviderRequest& request, ProviderSink sink) {
    const std::string question = request.history.empty() ? std::string() : textOf(request.history.back().content);
    return std::make_unique<DemoStream>(
        io_, delay_, demoScript(question), DemoFiles(files_, request.userId, request.chatId), std::move(sink));
}

}
