#pragma once

#include "jsonparser/tffilterjsontable.h"
#include "net/tfdm.h"

#include <QByteArray>
#include <QMap>
#include <QString>

// The entries of a list control's reply, name to value: an object with an
// array under "data", each element named by "NodeNameFieldName" or "NAME"
// and valued by "NodeDataKeyFieldName" or "VALUE". Anything else gives no
// entries. Being a map, the names come out sorted and a repeated name keeps
// its last value.
QMap<QString, QString> remoteListEntries(const QByteArray &reply);

// Sends the request of a control whose row names a data object, on a pool
// thread; done(entries) runs on the owner's thread when the request
// succeeded, and never once the owner is gone.
template<typename F>
void requestRemoteList(const TFDm &dm, const TFTableModelData::FilterData &row, F done)
{
    dm.start(TFUc::listRequest(row.DataSourceName, row.DataSourceFilter, row.DataSourceFilterParams),
             [done](bool isOk, const QByteArray &data) {
                 if (isOk)
                     done(remoteListEntries(data));
             });
}
