#pragma once

#include <QJsonObject>
#include <QVariantMap>
#include <QWidget>

#include <functional>

class QLabel;
class QSplitter;

// The object that components of a composite screen reach through their
// parent's property "zhpObj": the screen's shared global arguments, the
// choice of one of them, and the note that a component's settings changed.
class ScreenObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap args READ args WRITE setArgs NOTIFY argsChanged)
public:
    using ArgumentChooser = std::function<QString(const QStringList &names, const QString &current)>;

    explicit ScreenObject(QObject *parent = nullptr);

    QVariantMap args() const { return m_args; }
    void setArgs(const QVariantMap &args);
    void setArg(const QString &name, const QVariant &value);

    // Asks the user which global argument to bind; a chooser set here stands
    // in for the dialog.
    void setArgumentChooser(ArgumentChooser chooser) { m_chooser = std::move(chooser); }

    // chosen receives the name picked, or current when the choice is cancelled.
    Q_INVOKABLE void getArgsDlg(const QString &current, QString &chosen);
    Q_INVOKABLE void settingsChanged();

signals:
    void argsChanged(const QVariantMap &args);
    void signalSettingsChanged();

private:
    QVariantMap m_args;
    ArgumentChooser m_chooser;
};

// A screen of components built by class name through the host's factory,
// one above the other, sharing one ScreenObject. Its document is JSON:
//   {"title": "...", "args": {...},
//    "components": [{"class": "TFFrameSubjectZHP", "state": {...}}, ...]}
// The components' saved state goes back into the file when one of them
// reports a change of settings.
class CompositeScreen : public QWidget
{
    Q_OBJECT
public:
    explicit CompositeScreen(QWidget *parent = nullptr);

    // False with error set when the file cannot be read, is no screen
    // document, or names a component that no plug-in registered.
    bool load(const QString &fileName, QString *error);
    bool loadDocument(const QJsonObject &document, QString *error);
    bool save(QString *error) const;

    // What made the last load fail.
    enum Failure { NoFailure, BadDocument, UnknownComponent };
    Failure failure() const { return m_failure; }

    QString title() const { return m_title; }
    ScreenObject *screenObject() const { return m_screen; }
    QList<QWidget *> components() const { return m_components; }
    QJsonObject document() const;

private:
    void showArguments();

    ScreenObject *m_screen;
    QSplitter *m_splitter;
    QLabel *m_argumentLine;
    QString m_fileName;
    QString m_title;
    QList<QWidget *> m_components;
    QList<QByteArray> m_classNames;
    Failure m_failure = NoFailure;
};
