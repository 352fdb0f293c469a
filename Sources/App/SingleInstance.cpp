#include "SingleInstance.h"

#include "Log.h"

#include <QCryptographicHash>
#include <QDBusAbstractAdaptor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace Korvi {

using namespace Qt::Literals;

namespace {

const auto interfaceName = u"org.freedesktop.Application"_s;
constexpr qsizetype mostUrls = 8;
constexpr qsizetype longestUrl = 65536;
constexpr qsizetype longestToken = 256;

// What lets a window come to the front, given to this process by whoever started it.
constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr auto tokenKey = "activation-token"_L1;

QVariantMap ownToken() {
    const QString token = qEnvironmentVariable(tokenVariable);
    return token.isEmpty() ? QVariantMap() : QVariantMap{{tokenKey, token}};
}

QString ownName() {
    const QByteArray info = qgetenv("KORVI_INFO");
    const QByteArray hash = QCryptographicHash::hash(info, QCryptographicHash::Sha256).toHex().left(16);
    return u"com.korvihub.Korvi"_s + (info.isEmpty() ? QString() : u".Info_"_s + QString::fromLatin1(hash));
}

QStringList urlsAmong(const QStringList& arguments) {
    QStringList urls;
    for (const QString& argument : arguments) {
        // An absolute URL; not an option, nor a path.
        if (const QUrl url(argument); url.isValid() && !url.isRelative() && urls.size() < mostUrls)
            urls.append(argument);
    }
    return urls;
}

}

class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance* instance)
        : QDBusAbstractAdaptor(instance)
        , m_instance(instance) {}

public slots:
    void Activate(const QVariantMap& platformData) {
        useToken(platformData);
        emit m_instance->activated();
    }
    void Open(const QStringList& uris, const QVariantMap& platformData) {
        useToken(platformData);
        m_instance->open(uris);
    }
    void ActivateAction(const QString&, const QVariantList&, const QVariantMap& platformData) {
        Activate(platformData);
    }

private:
    // The toolkit takes the token from the environment when a window asks to be activated.
    static void useToken(const QVariantMap& platformData) {
        const QString token = platformData.value(tokenKey).toString();
        if (!token.isEmpty() && token.size() <= longestToken)
            qputenv(tokenVariable, token.toUtf8());
    }

    SingleInstance* m_instance;
};

SingleInstance::SingleInstance(QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::sessionBus())
    , m_name(ownName())
    , m_path(u'/' + QString(m_name).replace(u'.', u'/')) {}

SingleInstance::~SingleInstance() {
    if (m_isOwner)
        m_bus.unregisterService(m_name);
    m_bus.unregisterObject(m_path);
}

bool SingleInstance::claim(const QStringList& arguments) {
    if (!m_bus.isConnected())
        return true;
    // The object before the name: who finds the name finds the object.
    new ApplicationAdaptor(this);
    if (!m_bus.registerObject(m_path, this, QDBusConnection::ExportAdaptors)) {
        qCWarning(lcPlatform) << "⚠️ [SingleInstance] The session bus takes no object of this program";
        return true;
    }
    const auto reply = m_bus.interface()->registerService(m_name, QDBusConnectionInterface::DontQueueService);
    m_isOwner = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (m_isOwner || !reply.isValid())
        return true;
    return !handOver(urlsAmong(arguments));
}

bool SingleInstance::handOver(const QStringList& urls) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_name, m_path, interfaceName, urls.isEmpty() ? u"Activate"_s : u"Open"_s);
    if (urls.isEmpty())
        call.setArguments({ownToken()});
    else
        call.setArguments({urls, ownToken()});
    const QDBusMessage answer = m_bus.call(call, QDBus::Block, patience);
    if (answer.type() == QDBusMessage::ReplyMessage)
        return true;
    qCWarning(lcPlatform).noquote() << "⚠️ [SingleInstance] The one that runs does not answer:"
                                    << answer.errorName();
    return false;
}

void SingleInstance::open(const QStringList& urls) {
    for (const QString& text : urls.mid(0, mostUrls)) {
        const QUrl url(text);
        if (text.size() <= longestUrl && url.isValid() && !url.isRelative())
            emit urlOpened(url);
    }
}

}

#include "SingleInstance.moc"
