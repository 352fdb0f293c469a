#include "Service.h"

#include "Core/Log.h"
#include "Providers/DemoProvider.h"
#include "Providers/OpenAiProvider.h"

#include <csignal>

namespace korvi::service {

namespace {

std::unique_ptr<Provider> providerFor(
    asio::io_context& io, FileStore& files, PdfText& pdfText, Typesetter& typesetter, const Options& options) {
    if (options.provider == ProviderKind::demo)
        return std::make_unique<DemoProvider>(io, files, options.demoDelay);
    return std::make_unique<OpenAiProvider>(io, files, pdfText, typesetter,
        OpenAiSettings{options.openaiUrl, options.openaiKey, options.model, options.modelForMode,
            options.allowPlainHttp, options.modelIdle, options.modelTools, options.searchUrl, options.imageModel});
}

void printCode(const std::string& email, const std::string& code) {
    consoleLine("Код входа для " + email + ": " + code);
}

}

Service::Service(const Options& options)
    : host_(options.host == "localhost" ? "127.0.0.1" : options.host)
    , folder_(options.data)
    , database_(folder_.database())
    , accounts_(database_)
    , chats_(database_)
    , files_(database_, folder_.path() / "files")
    , typesetter_(io_)
    , pdfText_(io_)
    , signIn_(accounts_, printCode)
    , provider_(providerFor(io_, files_, pdfText_, typesetter_, options))
    , titles_(io_, chats_, options.provider == ProviderKind::demo || !options.modelTitles ? nullptr : provider_.get())
    , engine_(io_, chats_, files_, *provider_, titles_)
    , api_(signIn_, accounts_, chats_, files_, engine_, typesetter_, options.devProviders)
    , http_(io_, api_, engine_, host_, options.port)
    , signals_(io_, SIGTERM, SIGINT) {
    // A full disk or a closed pipe is an error to report, not a reason to die.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    signals_.async_wait([this](const boost::system::error_code& error, int) {
        if (!error)
            stop();
    });
    files_.setOrigin(options.publicUrl.empty() ? origin() : options.publicUrl);
    files_.sweep();
    engine_.recover();
    if (!options.isLoopback())
        logLine("служба доступна по сети без шифрования: поставьте перед ней сервер с TLS.");
}

std::string Service::origin() const {
    const bool isV6 = host_.find(':') != std::string::npos;
    return "http://" + (isV6 ? "[" + host_ + "]" : host_) + ":" + std::to_string(http_.port());
}

std::string Service::address() const {
    return origin() + Api::basePath;
}

void Service::run() {
    io_.run();
}

void Service::stop() {
    http_.stop();
    engine_.shutdown();
    // Time for the goodbyes; whoever does not answer them is left.
    auto grace = std::make_shared<asio::steady_timer>(io_, std::chrono::milliseconds(300));
    grace->async_wait([this, grace](const boost::system::error_code&) { io_.stop(); });
}

}
