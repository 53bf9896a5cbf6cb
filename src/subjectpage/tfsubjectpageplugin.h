#pragma once

#include "expression/scriptwatchdog.h"
#include "tfcore/iplugin.h"

// The plug-in's entry: registers the page type with the host, which then
// makes one TFSubjectPage per page URL of the scheme view.
class TFSubjectPagePlugin : public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TFAppPlugin_iid FILE "subjectpage.json")
    Q_INTERFACES(IPlugin)
public:
    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;

private:
    // The thread that interrupts runaway formulas lives as long as the
    // plug-in, and is joined before the library can be unloaded.
    ScriptWatchdog::Hold m_watchdogThread;
};
