#pragma once

#include "Auth/SignIn.h"
#include "Auth/Tickets.h"
#include "Chat/AnswerEngine.h"
#include "Files/FileStore.h"
#include "Http/Message.h"
#include "Http/Upload.h"
#include "Store/ChatStore.h"
#include "Tools/Typesetter.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace korvi::service {

/// The routes under /api/v1, the files, and the admission to the chat socket.
class Api {
public:
    static constexpr const char* basePath = "/api/v1";
    static constexpr const char* socketPath = "/ws/v1/chats";

    /// `devProviders`: stand-in accounts of other providers may sign in.
    Api(SignIn& signIn, AccountStore& accounts, ChatStore& chats, FileStore& files, AnswerEngine& engine,
        Typesetter& typesetter, bool devProviders = false);

    /// `respond` is called once, at once or later.
    using Respond = std::function<void(const Response&)>;
    void handle(const Request& request, const Respond& respond);
    /// An upload's body is not kept in memory: it goes through beginUpload() and finishUpload().
    bool isUpload(const Request& request) const;
    /// `length` of the body, if it is known.
    std::variant<Response, std::unique_ptr<Upload>> beginUpload(
        const Request& request, std::optional<std::uint64_t> length);
    Response finishUpload(Upload& upload);
    /// Who may open the socket with this request, or why it is refused.
    std::variant<SessionRow, Response> admit(const Request& request);

private:
    struct Context {
        const Request& request;
        SessionRow session;
        nlohmann::json body;
        /// The number that stands for {id} in the path.
        long long id = 0;
    };
    /// A page is opened by a browser: what it sends is not JSON.
    enum class Access { open, signedIn, page };
    struct Route {
        const char* method;
        const char* path;
        Access access;
        Response (Api::*handler)(const Context&);
    };
    static const std::vector<Route>& routes();

    Response handle(const Request& request);
    Response run(const Route& route, const Request& request, long long id);
    Response file(const Request& request);
    /// The PDF of a LaTeX artifact; false if the path means something else.
    bool artifactPdf(const Request& request, const Respond& respond);
    void typesetArtifact(const std::string& text, const Respond& respond);
    static Response signedIn(const Context& context, const SignedIn& result);
    Response signInAs(const Context& context, const std::optional<std::string>& email);

    Response requestCode(const Context& context);
    Response verifyCode(const Context& context);
    Response googleSignIn(const Context& context);
    Response vkSignIn(const Context& context);
    Response yandexSignIn(const Context& context);
    Response appleSignIn(const Context& context);
    Response vkCallback(const Context& context);
    Response yandexCallback(const Context& context);
    Response appleCallback(const Context& context);
    Response authenticationRecord(const Context& context);
    Response logOut(const Context& context);
    Response self(const Context& context);
    Response deleteSelf(const Context& context);
    Response ticket(const Context& context);
    Response chats(const Context& context);
    Response messages(const Context& context);
    Response renameChat(const Context& context);
    Response setFavorite(const Context& context);
    Response deleteChat(const Context& context);

    SignIn& signIn_;
    AccountStore& accounts_;
    ChatStore& chats_;
    FileStore& files_;
    AnswerEngine& engine_;
    Typesetter& typesetter_;
    bool devProviders_;
    Tickets tickets_;
    // Documents that are being typeset.
    std::map<unsigned, std::shared_ptr<void>> runs_;
    unsigned lastRun_ = 0;
};

}
