#include "compositescreen.h"

#include "tfcore/itfmemory.h"
#include "tfcore/tfcore.h"
#include "tfcore/tffactory.h"

#include <QDebug>
#include <QFile>
#include <QInputDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QSaveFile>
#include <QSplitter>
#include <QVBoxLayout>

ScreenObject::ScreenObject(QObject *parent)
    : QObject(parent)
{
}

void ScreenObject::setArgs(const QVariantMap &args)
{
    if (args == m_args)
        return;
    m_args = args;
    emit argsChanged(m_args);
}

void ScreenObject::setArg(const QString &name, const QVariant &value)
{
    QVariantMap args = m_args;
    args.insert(name, value);
    setArgs(args);
}

void ScreenObject::getArgsDlg(const QString &current, QString &chosen)
{
    const QStringList names = m_args.keys();
    if (m_chooser) {
        chosen = m_chooser(names, current);
        return;
    }
    bool ok = false;
    const QString picked = QInputDialog::getItem(TFCore::instance()->mainWindow(), tr("Global argument"),
                                                 tr("Bind to the global argument:"), names,
                                                 qMax(0, names.indexOf(current)), true, &ok);
    chosen = ok ? picked : current;
}

void ScreenObject::settingsChanged()
{
    emit signalSettingsChanged();
}

CompositeScreen::CompositeScreen(QWidget *parent)
    : QWidget(parent)
    , m_screen(new ScreenObject(this))
    , m_splitter(new QSplitter(Qt::Vertical, this))
    , m_argumentLine(new QLabel(this))
{
    setObjectName(QStringLiteral("CompositeScreen"));
    m_argumentLine->setObjectName(QStringLiteral("ScreenArguments"));
    m_argumentLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_splitter->setChildrenCollapsible(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_argumentLine);
    layout->addWidget(m_splitter, 1);

    connect(m_screen, &ScreenObject::argsChanged, this, &CompositeScreen::showArguments);
    connect(m_screen, &ScreenObject::signalSettingsChanged, this, [this] {
        QString error;
        if (!m_fileName.isEmpty() && !save(&error))
            qWarning() << "screen not saved:" << error;
    });
    showArguments();
}

bool CompositeScreen::load(const QString &fileName, QString *error)
{
    m_failure = BadDocument;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read screen \"%1\": %2").arg(fileName, file.errorString());
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        *error = QStringLiteral("screen \"%1\" is not a JSON object: %2").arg(fileName, parseError.errorString());
        return false;
    }
    if (!loadDocument(document.object(), error))
        return false;
    m_fileName = fileName;
    return true;
}

bool CompositeScreen::loadDocument(const QJsonObject &document, QString *error)
{
    m_failure = BadDocument;
    const QJsonValue components = document.value(QLatin1String("components"));
    if (!components.isArray() || components.toArray().isEmpty()) {
        *error = QStringLiteral("a screen needs a non-empty array \"components\"");
        return false;
    }
    // Check every name first, so that a bad document builds nothing.
    const auto &constructors = TFFactory<QWidget>::constructors();
    const QJsonArray list = components.toArray();
    for (const QJsonValue &entry : list) {
        const QByteArray className = entry.toObject().value(QLatin1String("class")).toString().toUtf8();
        if (className.isEmpty()) {
            *error = QStringLiteral("every component needs a \"class\"");
            return false;
        }
        if (!constructors.value(className)) {
            m_failure = UnknownComponent;
            *error = QStringLiteral("no component \"%1\" is registered by the plug-ins")
                    .arg(QString::fromUtf8(className));
            return false;
        }
    }

    m_title = document.value(QLatin1String("title")).toString(tr("Screen"));
    if (document.value(QLatin1String("orientation")).toString() == QLatin1String("horizontal"))
        m_splitter->setOrientation(Qt::Horizontal);
    m_screen->setArgs(document.value(QLatin1String("args")).toObject().toVariantMap());

    for (const QJsonValue &entry : list) {
        const QJsonObject component = entry.toObject();
        const QByteArray className = component.value(QLatin1String("class")).toString().toUtf8();
        // Components find the screen through their parent's property.
        auto *holder = new QWidget(m_splitter);
        holder->setObjectName(QStringLiteral("ComponentHolder"));
        holder->setProperty("zhpObj", QVariant::fromValue<QObject *>(m_screen));
        auto *layout = new QVBoxLayout(holder);
        layout->setContentsMargins(0, 0, 0, 0);
        QWidget *widget = constructors.value(className)(holder);
        if (!widget) {
            m_failure = UnknownComponent;
            *error = QStringLiteral("component \"%1\" could not be made").arg(QString::fromUtf8(className));
            return false;
        }
        layout->addWidget(widget);
        m_splitter->addWidget(holder);
        if (auto *memory = dynamic_cast<ITFMemory *>(widget)) {
            const QJsonValue state = component.value(QLatin1String("state"));
            if (state.isObject())
                memory->restore(state.toObject().toVariantMap());
        }
        m_components.append(widget);
        m_classNames.append(className);
        qDebug() << "screen component" << className << "made";
    }
    m_failure = NoFailure;
    return true;
}

QJsonObject CompositeScreen::document() const
{
    QJsonObject document;
    document.insert(QStringLiteral("title"), m_title);
    if (m_splitter->orientation() == Qt::Horizontal)
        document.insert(QStringLiteral("orientation"), QStringLiteral("horizontal"));
    document.insert(QStringLiteral("args"), QJsonObject::fromVariantMap(m_screen->args()));
    QJsonArray components;
    for (int i = 0; i < m_components.size(); ++i) {
        QJsonObject component;
        component.insert(QStringLiteral("class"), QString::fromUtf8(m_classNames.at(i)));
        if (auto *memory = dynamic_cast<ITFMemory *>(m_components.at(i))) {
            QMap<QString, QVariant> state;
            memory->save(state);
            component.insert(QStringLiteral("state"), QJsonObject::fromVariantMap(state));
        }
        components.append(component);
    }
    document.insert(QStringLiteral("components"), components);
    return document;
}

bool CompositeScreen::save(QString *error) const
{
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = file.errorString();
        return false;
    }
    file.write(QJsonDocument(document()).toJson());
    if (!file.commit()) {
        *error = file.errorString();
        return false;
    }
    qDebug() << "screen saved to" << m_fileName;
    return true;
}

void CompositeScreen::showArguments()
{
    const QVariantMap args = m_screen->args();
    QStringList parts;
    for (auto it = args.cbegin(); it != args.cend(); ++it)
        parts.append(QStringLiteral("%1 = %2").arg(it.key(), it.value().toString()));
    m_argumentLine->setText(parts.isEmpty() ? tr("No global arguments")
                                            : tr("Global arguments: %1").arg(parts.join(QStringLiteral("; "))));
}
