#pragma once

#include "Auth/SignIn.h"
#include "Chat/AnswerEngine.h"
#include "Chat/ChatTitles.h"
#include "Core/Asio.h"
#include "DataFolder.h"
#include "Files/FileStore.h"
#include "Http/Api.h"
#include "Http/HttpServer.h"
#include "Options.h"
#include "Store/AccountStore.h"
#include "Store/ChatStore.h"
#include "Store/Database.h"
#include "Tools/PdfText.h"
#include "Tools/Typesetter.h"

#include <boost/asio/signal_set.hpp>
#include <memory>
#include <string>

namespace korvi::service {

/// The service put together: every long-lived part is created here and handed on.
class Service {
public:
    /// Throws std::runtime_error with a message for the user if it cannot start.
    explicit Service(const Options& options);

    std::string address() const;
    const std::filesystem::path& data() const { return folder_.path(); }
    /// Until SIGTERM or SIGINT.
    void run();

private:
    std::string origin() const;
    void stop();

    asio::io_context io_{1};
    std::string host_;
    DataFolder folder_;
    Database database_;
    AccountStore accounts_;
    ChatStore chats_;
    FileStore files_;
    Typesetter typesetter_;
    PdfText pdfText_;
    SignIn signIn_;
    std::unique_ptr<Provider> provider_;
    ChatTitles titles_;
    AnswerEngine engine_;
    Api api_;
    HttpServer http_;
    asio::signal_set signals_;
};

}
