#include "UsersService.h"

#include "APIClient.h"

namespace Korvi {

UsersService::UsersService(APIClient& client)
    : m_client(client) {}

Task<User> UsersService::getSelf() {
    return m_client.request<User>(QStringLiteral("/user"));
}

}
