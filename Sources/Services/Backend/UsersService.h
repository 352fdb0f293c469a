#pragma once

#include "TaskScope.h"
#include "User.h"

namespace Korvi {

class APIClient;

class UsersService {
public:
    explicit UsersService(APIClient& client);

    Task<User> getSelf(); // fails with APIError or URLError

private:
    APIClient& m_client;
};

}
