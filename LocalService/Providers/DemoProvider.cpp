#include "Providers/DemoProvider.h"

#include "Providers/DemoTexts.h"

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
    DemoStream(asio::io_context& io, std::chrono::milliseconds delay, DemoAnswer answer, ProviderSink sink)
        : timer_(io)
        , delay_(delay * answer.slowness)
        , answer_(std::move(answer))
        , sink_(std::move(sink)) {
        wait();
    }

private:
    void wait() {
        timer_.expires_after(delay_);
        // An expired timer's handler may already be queued when the stream is destroyed: it asks whether it is wanted.
        timer_.async_wait([this, wanted = std::weak_ptr(alive_)](const boost::system::error_code& error) {
            if (!error && !wanted.expired())
                step();
        });
    }

    void step() {
        // The sink may destroy this stream, and with it the stream's own copy of the sink.
        const auto sink = sink_;
        if (thinkingAt_ < answer_.thinking.size()) {
            auto text = takePoints(answer_.thinking, thinkingAt_, pointsPerStep);
            wait();
            sink(ProviderDelta{PieceKind::thinking, std::move(text)});
        } else if (textAt_ < answer_.text.size()) {
            auto text = takePoints(answer_.text, textAt_, pointsPerStep);
            wait();
            sink(ProviderDelta{PieceKind::text, std::move(text)});
        } else {
            if (answer_.error.empty())
                sink(ProviderFinished{});
            else
                sink(ProviderFailed{answer_.error});
        }
    }

    asio::steady_timer timer_;
    std::chrono::milliseconds delay_;
    DemoAnswer answer_;
    ProviderSink sink_;
    std::size_t thinkingAt_ = 0;
    std::size_t textAt_ = 0;
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
    return std::make_unique<DemoStream>(io_, delay_, demoAnswer(question), std::move(sink));
}

}
