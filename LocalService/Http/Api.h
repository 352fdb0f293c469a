#pragma once

#include "Auth/SignIn.h"
#include "Auth/Tickets.h"
#include "Chat/AnswerEngine.h"
#include "Http/Message.h"
#include "Store/ChatStore.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace korvi::service {

/// The routes under /api/v1 and the admission to the chat socket.
class Api {
public:
    static constexpr const char* basePath = "/api/v1";
    static constexpr const char* socketPath = "/ws/v1/chats";

    /// `devProviders`: stand-in accounts of other providers may sign in.
    Api(SignIn& signIn, AccountStore& accounts, ChatStore& chats, AnswerEngine& engine, bool devProviders = false);

    Response handle(const Request& request);
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

    Response run(const Route& route, const Request& request, long long id);
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
    AnswerEngine& engine_;
    bool devProviders_;
    Tickets tickets_;
};

}
