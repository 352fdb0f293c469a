#include "Shell/ReviewManager.h"

#include "Clock.h"
#include "Defaults.h"
#include "Info.h"
#include "Scheduler.h"

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto sessionCount = u"review_sessionCount"_s;
const auto messageCount = u"review_messageCount"_s;
const auto lastPromptVersion = u"review_lastPromptVersion"_s;
const auto lastPromptDate = u"review_lastPromptDate"_s; // ISO 8601, UTC

}

ReviewManager::ReviewManager(Defaults& defaults, const Info& info, Clock& clock, Scheduler& scheduler)
    : m_defaults(defaults)
    , m_info(info)
    , m_clock(clock)
    , m_scheduler(scheduler) {}

ReviewManager::~ReviewManager() = default;

void ReviewManager::recordSession() {
    add(sessionCount);
}

void ReviewManager::recordMessage() {
    add(messageCount);
}

void ReviewManager::requestReviewIfAppropriate() {
    if (!canPrompt())
        return;
    const qint64 messages = count(messageCount);
    const bool isDue = count(sessionCount) == firstSessionThreshold || messages == firstMessageThreshold ||
        (messages > firstMessageThreshold && (messages - firstMessageThreshold) % recurringMessageInterval == 0);
    if (isDue)
        m_scope.start([this] { return prompt(); });
}

bool ReviewManager::canPrompt() const {
    if (m_defaults.string(lastPromptVersion) == m_info.string("CFBundleShortVersionString"_L1))
        return false;
    const std::optional<QString> last = m_defaults.string(lastPromptDate);
    if (!last)
        return true;
    const QDateTime date = QDateTime::fromString(*last, Qt::ISODate);
    return date.isValid() && date.addDays(minDaysBetweenPrompts) <= m_clock.now();
}

Task<void> ReviewManager::prompt() {
    try {
        co_await m_scheduler.sleep(delay);
    } catch (const TaskCancelled&) {
        // The application ends meanwhile: the moment counts as used all the same.
        remember();
        throw;
    }
    remember();
}

void ReviewManager::remember() {
    m_defaults.setString(lastPromptDate, m_clock.now().toString(Qt::ISODate));
    m_defaults.setString(lastPromptVersion, m_info.string("CFBundleShortVersionString"_L1));
}

void ReviewManager::add(const QString& key) {
    m_defaults.setInteger(key, count(key) + 1);
}

qint64 ReviewManager::count(const QString& key) const {
    return m_defaults.integer(key).value_or(0);
}

}
