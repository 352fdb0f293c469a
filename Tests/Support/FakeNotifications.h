#pragma once

#include "UserNotifications.h"

#include <vector>

namespace Korvi::Test {

// The desktop, as a test says it is.
class FakeNotifications : public UserNotifications {
public:
    bool isGranted = true;
    int asked = 0;
    std::vector<UserNotification> shown;

    Async<bool> requestAuthorization() override {
        ++asked;
        return isAuthorized();
    }
    Async<bool> isAuthorized() override {
        Resolver<bool> resolver;
        resolver.resolve(isGranted);
        return resolver.async();
    }
    void show(UserNotification notification) override { shown.push_back(std::move(notification)); }
    void withdraw(const QString& id) override {
        std::erase_if(shown, [&](const UserNotification& each) { return each.id == id; });
    }
};

}
