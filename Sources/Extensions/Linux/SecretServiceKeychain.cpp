#include "SecretServiceKeychain.h"

#include <QTimer>
#include <qt6keychain/keychain.h>

#include <chrono>

namespace Korvi {

namespace {

// A store that is locked may ask the user for a password, and nobody may be there to give it.
constexpr auto patience = std::chrono::seconds(5);

template <class Job>
Job* makeJob(const QString& service, const QString& account) {
    auto* job = new Job(service); // deletes itself when it has finished
    job->setKey(account);
    return job;
}

Async<Keychain::Outcome> run(QKeychain::Job* job) {
    Resolver<Keychain::Outcome> resolver;
    QObject::connect(job, &QKeychain::Job::finished, job, [resolver](QKeychain::Job* finished) mutable {
        resolver.resolve(Keychain::Outcome{
            .ok = finished->error() == QKeychain::NoError,
            .status = QStringLiteral("%1 %2").arg(finished->error()).arg(finished->errorString()),
        });
    });
    QTimer::singleShot(patience, job, [resolver]() mutable {
        resolver.resolve(Keychain::Outcome{.ok = false, .status = QStringLiteral("no answer")});
    });
    job->start();
    return resolver.async();
}

}

Async<Secret> SecretServiceKeychain::read(const QString& service, const QString& account) {
    Resolver<Secret> resolver;
    auto* job = makeJob<QKeychain::ReadPasswordJob>(service, account);
    QObject::connect(job, &QKeychain::Job::finished, job, [resolver, job](QKeychain::Job*) mutable {
        resolver.resolve(job->error() == QKeychain::NoError ? Secret(job->textData().toUtf8()) : Secret());
    });
    QTimer::singleShot(patience, job, [resolver]() mutable { resolver.resolve(Secret()); });
    job->start();
    return resolver.async();
}

Async<Keychain::Outcome> SecretServiceKeychain::write(
    const QString& service, const QString& account, const Secret& value) {
    auto* job = makeJob<QKeychain::WritePasswordJob>(service, account);
    job->setTextData(QString::fromUtf8(value.reveal()));
    return run(job);
}

Async<Keychain::Outcome> SecretServiceKeychain::remove(const QString& service, const QString& account) {
    return run(makeJob<QKeychain::DeletePasswordJob>(service, account));
}

}
