#pragma once

#include "Auth/SignIn.h"
#include "Auth/Tickets.h"
#include "Chat/AnswerEngine.h"
#include "Http/Message.h"
#include "Store/ChatStore.h"

#include <string>
#include <variant>
#include <vector>

namespace korvi::service {

/// The routes under /api/v1 and the admission to the chat socket.
class Api {
public:
    static constexpr const char* basePath = "/api/v1";
    static constexpr const char* socketPath = "/ws/v1/chats";

    Api(SignIn& signIn, AccountStore& accounts, ChatStore& chats, AnswerEngine& engine);

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
    enum class Access { open, signedIn };
    struct Route {
        const char* method;
        const char* path;
        Access access;
        Response (Api::*handler)(const Context&);
    };
    static const std::vector<Route>& routes();

    Response run(const Route& route, const Request& request, long long id);

    Response requestCode(const Context& context);
    Response verifyCode(const Context& context);
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
    Tickets tickets_;
};

}
