#include "compositescreen.h"

#include "tfcore/itfmemory.h"
#include "tfcore/tfcore.h"
#include "tfcore/tffactory.h"

#include <QDebug>
#include <QFile>
#include <QInputDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
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

ScreenArgumentBar::ScreenArgumentBar(ScreenObject *screen, QWidget *parent)
    : QFrame(parent)
    , m_screen(screen)
    , m_layout(new QHBoxLayout(this))
    , m_caption(new QLabel(tr("Global arguments:"), this))
    , m_newArgument(new QLineEdit(this))
{
    setObjectName(QStringLiteral("ScreenArguments"));
    m_layout->setContentsMargins(6, 3, 6, 3);
    m_layout->setSpacing(6);
    m_layout->addWidget(m_caption);
    m_newArgument->setObjectName(QStringLiteral("newScreenArgument"));
    m_newArgument->setPlaceholderText(tr("name=value"));
    m_newArgument->setToolTip(tr("Add a global argument: its name, \"=\" and its value, then Enter"));
    m_newArgument->setMaximumWidth(160);
    m_layout->addWidget(m_newArgument);
    m_layout->addStretch(1);
    connect(m_newArgument, &QLineEdit::returnPressed, this, &ScreenArgumentBar::addArgument);
    connect(m_screen, &ScreenObject::argsChanged, this, &ScreenArgumentBar::showArguments);
    showArguments(m_screen->args());
}

void ScreenArgumentBar::showArguments(const QVariantMap &args)
{
    if (args.keys() != m_editors.keys()) {
        qDeleteAll(m_argumentWidgets);
        m_argumentWidgets.clear();
        m_editors.clear();
        int position = 1; // after the caption
        for (auto it = args.cbegin(); it != args.cend(); ++it) {
            auto *name = new QLabel(it.key() + QLatin1Char('='), this);
            auto *editor = new QLineEdit(this);
            editor->setObjectName(QStringLiteral("screenArgument:") + it.key());
            editor->setMinimumWidth(140);
            const QString key = it.key();
            connect(editor, &QLineEdit::editingFinished, this, [this, key] { commit(key); });
            m_layout->insertWidget(position++, name);
            m_layout->insertWidget(position++, editor);
            m_argumentWidgets << name << editor;
            m_editors.insert(key, editor);
        }
    }
    for (auto it = args.cbegin(); it != args.cend(); ++it) {
        QLineEdit *editor = m_editors.value(it.key());
        if (editor->text() != it.value().toString())
            editor->setText(it.value().toString());
    }
    m_caption->setText(args.isEmpty() ? tr("No global arguments") : tr("Global arguments:"));
}

void ScreenArgumentBar::commit(const QString &name)
{
    QLineEdit *editor = m_editors.value(name);
    if (!editor || editor->text() == m_screen->args().value(name).toString())
        return;
    qDebug() << "global argument" << name << "set to" << editor->text();
    m_screen->setArg(name, editor->text());
    emit signalArgumentEdited(name);
}

void ScreenArgumentBar::addArgument()
{
    const QString text = m_newArgument->text();
    const int equals = text.indexOf(QLatin1Char('='));
    const QString name = text.left(equals).trimmed();
    if (equals < 0 || name.isEmpty()) {
        qWarning() << "a new global argument is written name=value, not" << text;
        return;
    }
    m_newArgument->clear();
    m_screen->setArg(name, text.mid(equals + 1));
    emit signalArgumentEdited(name);
}

CompositeScreen::CompositeScreen(QWidget *parent)
    : QWidget(parent)
    , m_screen(new ScreenObject(this))
    , m_splitter(new QSplitter(Qt::Vertical, this))
    , m_argumentBar(new ScreenArgumentBar(m_screen, this))
{
    setObjectName(QStringLiteral("CompositeScreen"));
    m_splitter->setChildrenCollapsible(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_argumentBar);
    layout->addWidget(m_splitter, 1);

    connect(m_screen, &ScreenObject::signalSettingsChanged, this, &CompositeScreen::saveAfterChange);
    connect(m_argumentBar, &ScreenArgumentBar::signalArgumentEdited, this, &CompositeScreen::saveAfterChange);
}

void CompositeScreen::saveAfterChange()
{
    QString error;
    if (!m_fileName.isEmpty() && !save(&error))
        qWarning() << "screen not saved:" << error;
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
    // Check the document first, so that a bad one builds nothing.
    const auto &constructors = TFFactory<QWidget>::constructors();
    const QJsonArray list = components.toArray();
    QStringList unknown;
    for (const QJsonValue &entry : list) {
        const QByteArray className = entry.toObject().value(QLatin1String("class")).toString().toUtf8();
        if (className.isEmpty()) {
            *error = QStringLiteral("every component needs a \"class\"");
            return false;
        }
        if (!constructors.value(className))
            unknown.append(QString::fromUtf8(className));
    }
    if (unknown.size() == list.size()) {
        m_failure = UnknownComponent;
        *error = QStringLiteral("no component \"%1\" is registered by the plug-ins").arg(unknown.join(QStringLiteral("\", \"")));
        return false;
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
        const auto constructor = constructors.value(className);
        QWidget *widget = constructor ? constructor(holder) : nullptr;
        if (!widget) {
            const QString why = constructor
                    ? QStringLiteral("component \"%1\" could not be made").arg(QString::fromUtf8(className))
                    : QStringLiteral("no component \"%1\" is registered by the plug-ins").arg(QString::fromUtf8(className));
            qWarning().noquote() << "screen:" << why << "; the other components go on";
            auto *note = new QLabel(why, holder);
            note->setObjectName(QStringLiteral("UnmadeComponent"));
            note->setAlignment(Qt::AlignCenter);
            widget = note;
            m_unmade.insert(m_components.size(), component);
        } else if (auto *memory = dynamic_cast<ITFMemory *>(widget)) {
            const QJsonValue state = component.value(QLatin1String("state"));
            if (state.isObject())
                memory->restore(state.toObject().toVariantMap());
            else if (!state.isUndefined())
                qWarning() << "screen: the state of component" << className << "is no JSON object; it opens with its defaults";
        }
        layout->addWidget(widget);
        m_splitter->addWidget(holder);
        m_components.append(widget);
        m_classNames.append(className);
        qDebug() << "screen component" << className << (m_unmade.contains(m_components.size() - 1) ? "not made" : "made");
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
        if (m_unmade.contains(i)) {
            components.append(m_unmade.value(i));
            continue;
        }
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
