#pragma once

#include "tfcore/itfmemory.h"
#include "tfcore/itfskin.h"

#include <QFrame>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QVariant>

class QAction;
class QDialog;
class TFRightContainer;
class TFSubjectSetting;

// A data page as a component of the host's composite screens. It shows one
// view, chosen in its settings dialog or through a global argument of the
// screen, in a right container of its own; the screen keeps its state
// (save/restore) and shares global arguments with it. The screen object is
// found through the parent's property "zhpObj" and may be missing: then the
// frame works alone.
//
// Filter bars below it find it by its class name "TFFrameSubjectZHP" and read
// glFilterArgs: the component's own filter arguments, filled up with the
// screen's global ones.
class TFFrameSubjectZHP : public QFrame, public ITFMemory, public ITFSkin
{
    Q_OBJECT
    Q_PROPERTY(qlonglong objVwId READ objVwId WRITE setObjVwId)
    Q_PROPERTY(QVariantMap glFilterArgs READ glFilterArgs WRITE setGlFilterArgs)
public:
    static const char kStateVersion[];   // "1.0.0"

    // list: the topics that the settings dialog offers, "name:code" joined
    // by ","; empty lets the dialog read them from the host's configuration.
    explicit TFFrameSubjectZHP(QWidget *parent = nullptr, const QString &list = QString());
    ~TFFrameSubjectZHP() override;

    // Puts the three component classes into the host's factory.
    static void registerComponents();

    qlonglong objVwId() const { return m_objVwId; }
    // Takes a value of at least 1 that differs; does not refresh.
    void setObjVwId(qlonglong objVwId);

    QVariantMap glFilterArgs() const;
    void setGlFilterArgs(const QMap<QString, QVariant> &args);

    // Binds the view to the global argument named key, whose value reads
    // "caption|view identifier".
    void setObjVwIdGlKey(const QString &key);

    // ITFMemory
    void save(QMap<QString, QVariant> &state) override;
    void restore(const QMap<QString, QVariant> &state) override;

    // ITFSkin
    QWidget *getWidget() override { return this; }
    void applySkinStyle(const QVariant &style) override;

    TFRightContainer *rightContainer() const { return m_rightContainer; }
    QString title() const { return m_title; }
    QString binderKey() const { return m_binderKey; }
    QMap<QString, QVariant> filterMap() const { return m_filterMap; }
    QObject *screenObject() const { return m_zhpObj; }
    QAction *settingsAction() const { return m_settingsAction; }
    QString topicList() const { return m_list; }

public slots:
    void slotsArgsChanged(const QVariantMap &glArgs);
    // Runs the settings dialog; true when it was accepted.
    bool slotOpenSettings();

private:
    void refreshPage();
    void applyCachedVisibility();
    void reportMissingView();
    void bindToGlobalArgument(TFSubjectSetting *setting);
    void connectSetting(TFSubjectSetting *setting);

    TFRightContainer *m_rightContainer;
    qint64 m_objVwId = 0;
    QString m_title;
    bool m_spareFlag1 = false;
    bool m_spareFlag2 = false;
    bool m_spareFlag3 = false;
    QPointer<QObject> m_zhpObj;
    QString m_binderKey;
    QMap<QString, QVariant> m_filterMap;
    QString m_list;
    QAction *m_settingsAction;
};

// The component of the shipping-schedule topics. Like the next one it has no
// meta-object of its own, so that filter bars that look for the frame by its
// class name find it as well.
class TFFrameSubjectZHP_CQ : public TFFrameSubjectZHP
{
public:
    explicit TFFrameSubjectZHP_CQ(QWidget *parent = nullptr);
};

// The component of the plant topics.
class TFFrameSubjectZHP_ZZ : public TFFrameSubjectZHP
{
public:
    explicit TFFrameSubjectZHP_ZZ(QWidget *parent = nullptr);
};
