#pragma once

#include "filterwidget/filterparam.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>
#include <QVariant>

// The one place where the address and the JSON body of a service request are
// composed. The base address and the identity are values of the process:
// every TFDm rewrites them, and contents are built on the user-interface
// thread only.
namespace TFUc {

using Params = QList<QPair<QString, QVariant>>;
using Filters = QList<FilterParam::CustomFilter>;
using RawHeaders = QList<QPair<QByteArray, QByteArray>>;

// Service endpoints.
extern const char kSubjectDataPath[];   // "/bas/subject/data": view configuration and view data
extern const char kDsDataPath[];        // "/bas/ds/data": navigation, blocks, constants, list controls
extern const char kIndexDataPath[];     // "/bas/index/data": defined, no request uses it

// Operators of the filter expression.
extern const char kOpGreater[];
extern const char kOpGreaterEqual[];
extern const char kOpLess[];
extern const char kOpLessEqual[];
extern const char kOpEqual[];
extern const char kOpNotEqual[];
extern const char kOpLike[];
extern const char kOpIn[];
extern const char kOpNotIn[];
extern const char kOpAnd[];
extern const char kOpOr[];              // known, but refused by insertFilter
extern const char kConditionJoin[];     // "&&"
QStringList acceptedOperators();

// Data objects of /bas/ds/data.
constexpr int kNavigationObjId = 38;
constexpr int kConstantsObjId = 390;
extern const char kBlockObjId[];        // "43"; converted to a number for the body

// Keys of the index service; kept as the service's vocabulary, no body carries them.
extern const char kKeyType[];
extern const char kKeyPageNo[];
extern const char kKeyPageSize[];
extern const char kKeyIncludes[];
extern const char kKeyIdxId[];
extern const char kKeyIdentifier[];
extern const char kKeyIdxInfos[];
extern const char kKeyConstantTypeCode[];
extern const char kKeyCategories[];
extern const char kKeyChildren[];
extern const char kKeyCode[];
extern const char kKeyName[];
extern const char kKeyCatCode[];
extern const char kKeyCatCodeAll[];
extern const char kKeyCatName[];
extern const char kKeyPCatCode[];
extern const char kKeyHavIdx[];
extern const char kKeyIndexs[];
extern const char kKeyRoot[];
extern const char kKeySn[];
extern const char kKeyUnclassifiedCategory[];

// The descriptor that a TFWorkThread sends. Only url and body are used.
struct TFRequestContent
{
    QUrl url;
    QByteArray body;
    QString reserved;
    RawHeaders headers;
};

struct TFPaging
{
    bool noPaging = true;
    int page = 1;
    int size = 200;
};

// The body under construction.
class TFJSContent : public QJsonObject
{
public:
    TFJSContent() = default;
    explicit TFJSContent(const QJsonObject &object) : QJsonObject(object) {}

    // Adds "(field op :param)" to "filter", joined by " && ", and binds the
    // value(s) under param in "filterParams". False for an unknown operator
    // (nothing changes) or a param already bound (the condition stays).
    bool insertFilter(const QString &field, const QString &op, const QList<QVariant> &values,
                      QString param = QString());
};

// Process-wide base address and identity.
void setBaseUrl(const QUrl &url);       // assigns only when the text differs
QString baseUrl();
void setUserId(const QString &userId);
QString userId();
void setProductId(const QString &productId);
QString productId();

// The "auth" object every body built here begins with.
QJsonObject authObject();

// Requests of /bas/ds/data.
TFRequestContent navigationRowsRequest(qint64 pNodeCode);
TFRequestContent blockRowsRequest(int securityType);
TFRequestContent constantsRequest();
// The request of a list control that fills from the named data object.
TFRequestContent listRequest(const QString &objName, const QString &filter, const QString &filterParams);

// Requests of /bas/subject/data: flag 0 configuration, 1 rows, 2 whole data set.
TFRequestContent viewConfigRequest(qint64 objVwId, const Params &params, const Filters &filters);
TFRequestContent viewDataRequest(qint64 objVwId, const Params &params, const Filters &filters,
                                 const TFPaging &paging);
TFRequestContent wholeDataSetRequest(qint64 objVwId, const Params &params, const Filters &filters);
TFRequestContent viewRequest(qint64 objVwId, int flag, const Params &params, const Filters &filters,
                             const TFPaging &paging);
// The core: base address + /bas/subject/data, auth, paging, params, filters.
TFRequestContent subjectRequest(const Params &params, const Filters &filters, const TFPaging &paging);

// The typed record of a view's property rows (View_Config).
struct TFViewProperties
{
    bool isShowRelated = false;
    bool isShowChild = false;
    bool IsStat = false;
    bool IsSeriesDataRelation = false;
    bool IsOutput = false;
    bool IsHideState = false;
    bool IsCellSelect = false;
    bool IsShowIndicator = false;
    bool IsGetChartData = false;
    bool isShowBand = false;
    bool IsWrap = false;
    bool isPaged = true;
    bool IsPagesize = false;
    bool IsTurnOver = false;
    bool IsOutputAfterCross = false;
    bool IsGroupByBand = false;
    bool IsCrossSortByDesc = false;
    bool IsCross = false;
    bool IsHideVertLines = false;
    bool IsAutoSizeColumns = false;
    bool IsGroupSortByDesc = false;
    bool IsGroup = false;
    bool isAllowExport = false;
    bool IsOrder = false;
    bool isShowFilter = true;
    bool isShowBlock = false;

    QString relatedView;
    QString childView;
    QString filters;
    QString ChartViewConfig;
    QString Bands;

    double pageSize = 200;
    double VGridColumnWidth = 200;
    double FrozenCount = 0;
    double BandsLevel = 1;

    QString WebPageURL;
    QString ObjViewType;
    QString MainViewHeight;
    QString ViewStyle;
    QString VGridTextAlignment;
    QString MaxColumnWith;
    QString RowHeaderWith;
    QString VGridRowHeaderType;
    QString VGridColHeaderField;
    QString SectorNum;
    QString RootSectorNum;
    QString GroupFormatString;
    QString FieldNameSortGroup;
    QString GroupFields;
    QString BandGroupType;
    QString CrossField;
    QString FilterBarType;
    QString Order;
};

TFViewProperties readViewProperties(const QJsonArray &rows);

} // namespace TFUc
