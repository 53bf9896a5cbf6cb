#pragma once

#include <QFrame>
#include <QJsonObject>
#include <QMap>
#include <QVariantMap>
#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;
class QLineEdit;
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

// The bar above a screen's components: each global argument by name with its
// value in an editor. A value confirmed there (Enter, or leaving the field)
// becomes the argument's new value for every component; "name=value" in the
// last field adds an argument.
class ScreenArgumentBar : public QFrame
{
    Q_OBJECT
public:
    explicit ScreenArgumentBar(ScreenObject *screen, QWidget *parent = nullptr);

    QLineEdit *editorOf(const QString &name) const { return m_editors.value(name); }
    QLineEdit *newArgumentEditor() const { return m_newArgument; }
    QStringList names() const { return m_editors.keys(); }

signals:
    // The user changed or added the argument name.
    void signalArgumentEdited(const QString &name);

private:
    void showArguments(const QVariantMap &args);
    void commit(const QString &name);
    void addArgument();

    ScreenObject *m_screen;
    QHBoxLayout *m_layout;
    QLabel *m_caption;
    QMap<QString, QLineEdit *> m_editors;
    QList<QWidget *> m_argumentWidgets;
    QLineEdit *m_newArgument;
};

// A screen of components built by class name through the host's factory,
// one above the other, sharing one ScreenObject. Its document is JSON:
//   {"title": "...", "args": {...},
//    "components": [{"class": "TFFrameSubjectZHP", "state": {...}}, ...]}
// The components' saved state goes back into the file when one of them
// reports a change of settings, and so do the arguments when the user edits
// them. A component whose class no plug-in registered leaves a note in its
// place and in the log; the others work.
class CompositeScreen : public QWidget
{
    Q_OBJECT
public:
    explicit CompositeScreen(QWidget *parent = nullptr);

    // False with error set when the file cannot be read, is no screen
    // document, or names no component that a plug-in registered.
    bool load(const QString &fileName, QString *error);
    bool loadDocument(const QJsonObject &document, QString *error);
    bool save(QString *error) const;

    // What made the last load fail.
    enum Failure { NoFailure, BadDocument, UnknownComponent };
    Failure failure() const { return m_failure; }

    QString title() const { return m_title; }
    ScreenObject *screenObject() const { return m_screen; }
    // One widget per entry of the document; a note stands for an unknown class.
    QList<QWidget *> components() const { return m_components; }
    ScreenArgumentBar *argumentBar() const { return m_argumentBar; }
    QJsonObject document() const;

private:
    void saveAfterChange();

    ScreenObject *m_screen;
    QSplitter *m_splitter;
    ScreenArgumentBar *m_argumentBar;
    QString m_fileName;
    QString m_title;
    QList<QWidget *> m_components;
    QList<QByteArray> m_classNames;
    // The entries of components that could not be made, kept as they were
    // so that saving loses nothing.
    QMap<int, QJsonObject> m_unmade;
    Failure m_failure = NoFailure;
};
