#pragma once

#include "SignIn/SocialProvider.h"

#include <exception>

namespace Korvi {

// What the user reads when the service does not take what a provider gave.
QString loginFailure(SocialProvider provider, const std::exception& error);

// Why an account could not be deleted. Never empty.
QString deleteAccountFailure(const std::exception& error);

}
