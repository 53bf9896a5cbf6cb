#include "net/tfuc.h"

#include <QDebug>
#include <QJsonDocument>
#include <QStringList>

namespace TFUc {

const char kSubjectDataPath[] = "/bas/subject/data";
const char kDsDataPath[] = "/bas/ds/data";
const char kIndexDataPath[] = "/bas/index/data";

const char kOpGreater[] = ">";
const char kOpGreaterEqual[] = ">=";
const char kOpLess[] = "<";
const char kOpLessEqual[] = "<=";
const char kOpEqual[] = "==";
const char kOpNotEqual[] = "!=";
const char kOpLike[] = "like";
const char kOpIn[] = "in";
const char kOpNotIn[] = "nin";
const char kOpAnd[] = "&&";
const char kOpOr[] = "||";
const char kConditionJoin[] = "&&";

const char kBlockObjId[] = "43";

const char kKeyType[] = "type";
const char kKeyPageNo[] = "pageno";
const char kKeyPageSize[] = "pagesize";
const char kKeyIncludes[] = "includes";
const char kKeyIdxId[] = "idxId";
const char kKeyIdentifier[] = "identifier";
const char kKeyIdxInfos[] = "idxInfos";
const char kKeyConstantTypeCode[] = "CONSTANT_TYPE_CODE";
const char kKeyCategories[] = "categories";
const char kKeyChildren[] = "children";
const char kKeyCode[] = "code";
const char kKeyName[] = "name";
const char kKeyCatCode[] = "CAT_CODE";
const char kKeyCatCodeAll[] = "CAT_CODE_ALL";
const char kKeyCatName[] = "CAT_NAME";
const char kKeyPCatCode[] = "P_CAT_CODE";
const char kKeyHavIdx[] = "HAV_IDX";
const char kKeyIndexs[] = "indexs";
const char kKeyRoot[] = "ROOT";
const char kKeySn[] = "SN";
const char kKeyUnclassifiedCategory[] = "unclassifiedCategory";

namespace {

struct Identity
{
    QString baseUrl;
    QString userId;
    QString productId;
};

Identity &identity()
{
    static Identity value;
    return value;
}

QUrl endpoint(const char *path)
{
    return QUrl::fromUserInput(identity().baseUrl + QLatin1String(path));
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

void insertParams(TFJSContent &content, const Params &params)
{
    for (const auto &param : params) {
        if (param.first.isNull() || param.second.isNull())
            continue;
        content.insert(param.first, QJsonValue::fromVariant(param.second));
    }
}

void insertFilters(TFJSContent &content, const Filters &filters)
{
    for (const auto &filter : filters) {
        if (filter.fieldName.isNull() || filter.values.isEmpty())
            continue;
        content.insertFilter(filter.fieldName, filter.op, filter.values, filter.paramName);
    }
}

TFRequestContent dsRequest(TFJSContent content)
{
    content.insert(QStringLiteral("auth"), authObject());
    TFRequestContent request;
    request.url = endpoint(kDsDataPath);
    request.body = compact(content);
    return request;
}

} // namespace

QStringList acceptedOperators()
{
    return {QLatin1String(kOpGreater), QLatin1String(kOpGreaterEqual), QLatin1String(kOpLess),
            QLatin1String(kOpLessEqual), QLatin1String(kOpEqual), QLatin1String(kOpNotEqual),
            QLatin1String(kOpLike), QLatin1String(kOpIn), QLatin1String(kOpNotIn),
            QLatin1String(kOpAnd)};
}

bool TFJSContent::insertFilter(const QString &field, const QString &op, const QList<QVariant> &values,
                               QString param)
{
    if (!acceptedOperators().contains(op, Qt::CaseSensitive)) {
        qWarning() << "did not contain the operator" << op;
        return false;
    }
    if (param.isEmpty())
        param = field;

    const QString condition = QStringLiteral("(%1 %2 :%3)").arg(field, op, param);
    const QString filterKey = QStringLiteral("filter");
    QString filter = value(filterKey).toString();
    if (filter.isEmpty())
        filter = condition;
    else
        filter += QStringLiteral(" %1 %2").arg(QLatin1String(kConditionJoin), condition);
    // The condition is written before the parameter is checked: a second
    // condition on a bound parameter stays and shares the earlier value.
    insert(filterKey, filter);

    const QString paramsKey = QStringLiteral("filterParams");
    QJsonObject filterParams = value(paramsKey).toObject();
    if (filterParams.contains(param)) {
        qWarning() << "has same param" << param << " current param :" << filterParams.toVariantMap();
        return false;
    }

    QJsonValue bound;
    if (values.size() > 1 || op == QLatin1String(kOpIn))
        bound = QJsonArray::fromVariantList(values);
    else
        bound = QJsonValue::fromVariant(values.value(0));
    filterParams.insert(param, bound);
    insert(paramsKey, filterParams);
    return true;
}

void setBaseUrl(const QUrl &url)
{
    const QString text = url.toString();
    if (text != identity().baseUrl)
        identity().baseUrl = text;
}

QString baseUrl() { return identity().baseUrl; }
void setUserId(const QString &userId) { identity().userId = userId; }
QString userId() { return identity().userId; }
void setProductId(const QString &productId) { identity().productId = productId; }
QString productId() { return identity().productId; }

QJsonObject authObject()
{
    QJsonObject auth;
    auth.insert(QStringLiteral("userId"), identity().userId);
    auth.insert(QStringLiteral("prodId"), identity().productId);
    return auth;
}

TFRequestContent navigationRowsRequest(qint64 pNodeCode)
{
    TFJSContent content;
    content.insert(QStringLiteral("objId"), kNavigationObjId);
    content.insert(QStringLiteral("P_NODE_CODE"), pNodeCode);
    return dsRequest(content);
}

TFRequestContent blockRowsRequest(int securityType)
{
    TFJSContent content;
    content.insert(QStringLiteral("objId"), QString::fromLatin1(kBlockObjId).toInt());
    FilterParam::CustomFilter filter;
    filter.fieldName = QStringLiteral("SECU_TYP_CODE");
    filter.op = QLatin1String(kOpEqual);
    filter.values = {securityType};
    insertFilters(content, {filter});
    return dsRequest(content);
}

TFRequestContent constantsRequest()
{
    TFJSContent content;
    content.insert(QStringLiteral("objId"), kConstantsObjId);
    return dsRequest(content);
}

TFRequestContent listRequest(const QString &objName, const QString &filter, const QString &filterParams)
{
    // A list control's own body: no "auth", just the named object, its
    // filter text and the parameters, an empty object when they aren't JSON.
    QJsonObject content;
    content.insert(QStringLiteral("filter"), filter);
    content.insert(QStringLiteral("filterParams"), QJsonDocument::fromJson(filterParams.toUtf8()).object());
    content.insert(QStringLiteral("objName"), objName);
    TFRequestContent request;
    request.url = endpoint(kDsDataPath);
    request.body = compact(content);
    return request;
}

TFRequestContent subjectRequest(const Params &params, const Filters &filters, const TFPaging &paging)
{
    TFJSContent content;
    content.insert(QStringLiteral("auth"), authObject());
    if (!paging.noPaging) {
        content.insert(QStringLiteral("page"), paging.page);
        content.insert(QStringLiteral("size"), paging.size);
    }
    insertParams(content, params);
    insertFilters(content, filters);

    TFRequestContent request;
    request.url = endpoint(kSubjectDataPath);
    request.body = compact(content);
    return request;
}

TFRequestContent viewRequest(qint64 objVwId, int flag, const Params &params, const Filters &filters,
                             const TFPaging &paging)
{
    Params all = params;
    all.append({QStringLiteral("obj_vw_id"), objVwId});
    all.append({QStringLiteral("flag"), flag});
    return subjectRequest(all, filters, paging);
}

TFRequestContent viewConfigRequest(qint64 objVwId, const Params &params, const Filters &filters)
{
    return viewRequest(objVwId, 0, params, filters, TFPaging{true, 1, 200});
}

TFRequestContent viewDataRequest(qint64 objVwId, const Params &params, const Filters &filters,
                                 const TFPaging &paging)
{
    return viewRequest(objVwId, 1, params, filters, paging);
}

TFRequestContent wholeDataSetRequest(qint64 objVwId, const Params &params, const Filters &filters)
{
    return viewRequest(objVwId, 2, params, filters, TFPaging{true, 1, 200});
}

TFViewProperties readViewProperties(const QJsonArray &rows)
{
    TFViewProperties p;

    struct BoolKey { const char *name; bool TFViewProperties::*field; };
    static const BoolKey boolKeys[] = {
        {"isShowRelated", &TFViewProperties::isShowRelated},
        {"isShowChild", &TFViewProperties::isShowChild},
        {"IsStat", &TFViewProperties::IsStat},
        {"IsSeriesDataRelation", &TFViewProperties::IsSeriesDataRelation},
        {"IsOutput", &TFViewProperties::IsOutput},
        {"IsHideState", &TFViewProperties::IsHideState},
        {"IsCellSelect", &TFViewProperties::IsCellSelect},
        {"IsShowIndicator", &TFViewProperties::IsShowIndicator},
        {"IsGetChartData", &TFViewProperties::IsGetChartData},
        {"isShowBand", &TFViewProperties::isShowBand},
        {"IsWrap", &TFViewProperties::IsWrap},
        {"isPaged", &TFViewProperties::isPaged},
        {"IsPagesize", &TFViewProperties::IsPagesize},
        {"IsTurnOver", &TFViewProperties::IsTurnOver},
        {"IsOutputAfterCross", &TFViewProperties::IsOutputAfterCross},
        {"IsGroupByBand", &TFViewProperties::IsGroupByBand},
        {"IsCrossSortByDesc", &TFViewProperties::IsCrossSortByDesc},
        {"IsCross", &TFViewProperties::IsCross},
        {"IsHideVertLines", &TFViewProperties::IsHideVertLines},
        {"IsAutoSizeColumns", &TFViewProperties::IsAutoSizeColumns},
        {"IsGroupSortByDesc", &TFViewProperties::IsGroupSortByDesc},
        {"IsGroup", &TFViewProperties::IsGroup},
        {"isAllowExport", &TFViewProperties::isAllowExport},
        {"IsOrder", &TFViewProperties::IsOrder},
        {"isShowFilter", &TFViewProperties::isShowFilter},
        {"isShowBlock", &TFViewProperties::isShowBlock},
    };
    struct TextKey { const char *name; QString TFViewProperties::*field; };
    static const TextKey extendKeys[] = {
        {"relatedView", &TFViewProperties::relatedView},
        {"childView", &TFViewProperties::childView},
        {"filters", &TFViewProperties::filters},
        {"ChartViewConfig", &TFViewProperties::ChartViewConfig},
        {"Bands", &TFViewProperties::Bands},
    };
    struct NumberKey { const char *name; double TFViewProperties::*field; };
    static const NumberKey numberKeys[] = {
        {"pageSize", &TFViewProperties::pageSize},
        {"VGridColumnWidth", &TFViewProperties::VGridColumnWidth},
        {"FrozenCount", &TFViewProperties::FrozenCount},
        {"BandsLevel", &TFViewProperties::BandsLevel},
    };
    static const TextKey valueKeys[] = {
        {"WebPageURL", &TFViewProperties::WebPageURL},
        {"ObjViewType", &TFViewProperties::ObjViewType},
        {"MainViewHeight", &TFViewProperties::MainViewHeight},
        {"ViewStyle", &TFViewProperties::ViewStyle},
        {"VGridTextAlignment", &TFViewProperties::VGridTextAlignment},
        {"MaxColumnWith", &TFViewProperties::MaxColumnWith},
        {"RowHeaderWith", &TFViewProperties::RowHeaderWith},
        {"VGridRowHeaderType", &TFViewProperties::VGridRowHeaderType},
        {"VGridColHeaderField", &TFViewProperties::VGridColHeaderField},
        {"SectorNum", &TFViewProperties::SectorNum},
        {"RootSectorNum", &TFViewProperties::RootSectorNum},
        {"GroupFormatString", &TFViewProperties::GroupFormatString},
        {"FieldNameSortGroup", &TFViewProperties::FieldNameSortGroup},
        {"GroupFields", &TFViewProperties::GroupFields},
        {"BandGroupType", &TFViewProperties::BandGroupType},
        {"CrossField", &TFViewProperties::CrossField},
        {"FilterBarType", &TFViewProperties::FilterBarType},
        {"Order", &TFViewProperties::Order},
    };

    for (const QJsonValue &element : rows) {
        const QJsonObject row = element.toObject();
        if (row.isEmpty())
            continue;
        const QString name = row.value(QStringLiteral("prop_name")).toString();
        const QJsonValue propVal = row.value(QStringLiteral("prop_val"));
        const QJsonValue extVal = row.value(QStringLiteral("ext_prop_val"));
        // A number in prop_val has no string form here, so it never counts as "1".
        const QString text = propVal.toString();

        bool matched = false;
        for (const BoolKey &key : boolKeys) {
            if (name == QLatin1String(key.name)) {
                p.*key.field = (text == QLatin1String("1"));
                matched = true;
                break;
            }
        }
        if (matched)
            continue;
        for (const TextKey &key : extendKeys) {
            if (name == QLatin1String(key.name)) {
                p.*key.field = extVal.toString();
                matched = true;
                break;
            }
        }
        if (matched)
            continue;
        for (const NumberKey &key : numberKeys) {
            if (name == QLatin1String(key.name)) {
                p.*key.field = text.toInt();
                matched = true;
                break;
            }
        }
        if (matched)
            continue;
        for (const TextKey &key : valueKeys) {
            if (name == QLatin1String(key.name)) {
                p.*key.field = text;
                break;
            }
        }
    }
    return p;
}

} // namespace TFUc
