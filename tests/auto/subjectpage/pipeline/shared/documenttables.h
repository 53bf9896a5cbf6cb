#pragma once

#include "jsonparser/tfdatajsontable.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <memory>

// The tables of one configuration document, read as the parser reads them,
// for suites that run the header and row building on their own.
struct DocumentTables
{
    explicit DocumentTables(const QJsonObject& document)
    {
        if (document.contains("Data"))
            data.initWith(document.value("Data"));
        if (document.contains("View_Config")) {
            view.reset(new TFViewConfigTable);
            view->initWith(document.value("View_Config"));
        }
        if (document.contains("Object_View_Config")) {
            objectView.reset(new TFObjectViewConfigTable);
            objectView->initWith(document.value("Object_View_Config"));
        }
        if (document.contains("Summary")) {
            summary.reset(new TFSummaryJsonTable);
            summary->initWith(document.value("Summary"));
        }
    }

    static QJsonObject load(const QString& name)
    {
        QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/pipeline/") + name);
        if (!file.open(QIODevice::ReadOnly))
            return QJsonObject();
        return QJsonDocument::fromJson(file.readAll()).object();
    }

    TFDataJsonTable data;
    std::unique_ptr<TFViewConfigTable> view;
    std::unique_ptr<TFObjectViewConfigTable> objectView;
    std::unique_ptr<TFSummaryJsonTable> summary;
};
