#include "../shared/messagelog.h"
#include "../shared/tablefields.h"

#include <QtTest>

// The tables of a view's configuration document. Each row of a data table
// gives a table kind, its input and the fields it must hold afterwards, in
// the one-line form of TableFields: only what differs from the defaults.
class tst_ConfigTables : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void reread_data();
    void reread();
    void badText_data();
    void badText();
    void announcements_data();
    void announcements();
    void merge_data();
    void merge();
    void lookups();
};

static void addRow(const char* name, const char* kind, const QString& input, const QString& expected)
{
    QTest::newRow(name) << QString(kind) << input << expected;
}

void tst_ConfigTables::read_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    // Column lists: upper-case keys for "Bands", lower-case for a cross
    // table's "GridColumns"; the visibility of the latter follows showStatus.
    const QString every = "columnType=BandedGridColumnWithUnit;ownerBand=B_PRICE;fieldName=TRD_AMT;url=view:?objvwid=2;"
                          "valueType=Decimal;unboundExpression=[A]+[B];unitCategory=2;prevUnitFactor=1;"
                          "showUnitFactor=10000;showUnit=万元;captionShowType=3;caption=成交额;width=120;"
                          "formatString=n2;visible=true;noSort=true;cellStyleExpression=red;textAlignment=3;"
                          "showStatus=6;sn=12;level=2;statExpression=SUM";
    addRow("Bands: every key", "Bands",
           R"([{"ColumnType":"BandedGridColumnWithUnit","OwnerBand":"B_PRICE","FieldName":"TRD_AMT",
               "Url":"view:?objvwid=2","ValueType":"Decimal","UnboundExpression":"[A]+[B]","UnitCategory":2,
               "PrevUnitFactor":1,"ShowUnitFactor":10000,"ShowUnit":"万元","CaptionShowType":3,"Caption":"成交额",
               "Width":120,"FormatString":"n2","Visible":true,"NoSort":true,"CellStyleExpression":"red",
               "TextAlignment":3,"ShowStatus":6,"SN":12,"Level":2,"StatExpression":"SUM"}])", every);
    addRow("GridColumns: every key", "GridColumns",
           R"([{"columnType":"BandedGridColumnWithUnit","ownerBand":"B_PRICE","fieldName":"TRD_AMT",
               "url":"view:?objvwid=2","valueType":"Decimal","unboundExpression":"[A]+[B]","unitCategory":2,
               "prevUnitFactor":1,"showUnitFactor":10000,"showUnit":"万元","captionShowType":3,"caption":"成交额",
               "width":120,"formatString":"n2","visible":false,"noSort":true,"cellStyleExpression":"red",
               "textAlignment":3,"showStatus":6,"sn":12,"level":2,"statExpression":"SUM"}])", every);
    addRow("Bands: lower-case keys are not read", "Bands", R"([{"fieldName":"A","width":5,"sn":3,"visible":true}])", "()");
    addRow("GridColumns: upper-case keys are not read", "GridColumns",
           R"([{"FieldName":"A","Width":5,"SN":3,"ShowStatus":1}])", "()");
    addRow("GridColumns: showStatus decides", "GridColumns",
           R"([{"visible":true,"showStatus":2},{"visible":false,"showStatus":6},{"showStatus":1},{"visible":true},
               {"visible":true,"showStatus":"1"}])",
           "showStatus=2 | visible=true;showStatus=6 | visible=true;showStatus=1 | () | ()");
    addRow("Bands: Visible stands as read", "Bands",
           R"([{"Visible":false,"ShowStatus":1},{"Visible":true,"ShowStatus":2},{"ShowStatus":6},{"Visible":"true"}])",
           "showStatus=1 | visible=true;showStatus=2 | showStatus=6 | ()");
    addRow("Bands: widths truncated to int", "Bands",
           R"([{"Width":120.7},{"Width":-120.7},{"Width":-9},{"Width":"120"},{"Width":1e12},{"Width":-1e12}])",
           "width=120 | width=-120 | width=-9 | () | width=2147483647 | width=-2147483648");
    addRow("Bands: factors truncated to int64", "Bands",
           R"([{"ShowUnitFactor":0.5},{"ShowUnitFactor":1e8},{"ShowUnitFactor":1e12},{"ShowUnitFactor":1e300},
               {"PrevUnitFactor":10000.9},{"PrevUnitFactor":-1e300}])",
           "() | showUnitFactor=100000000 | showUnitFactor=1000000000000 | showUnitFactor=9223372036854775807 | "
           "prevUnitFactor=10000 | prevUnitFactor=-9223372036854775808");
    addRow("Bands: other integers take no fraction", "Bands", R"([{"UnitCategory":2.5,"TextAlignment":3}])",
           "textAlignment=3");
    addRow("Bands: empty array", "Bands", "[]", "");
    addRow("Bands: object text", "Bands", R"({"FieldName":"A"})", "");
    addRow("Bands: elements that are no objects", "Bands", R"([1,"A",[],{"FieldName":"A"},null])", "fieldName=A");

    addRow("filters: every key", "filters",
           R"x([{"DefualtValue":"date'2024-01-31'","FieldName":"END_DT","ShowValue":"sv","Width":120,
               "ParameterCategory":1,"BeginGroup":true,"Filter":"A","DataSource":"SECU_TYP","Operator":">=",
               "NameValues":"A股=1;B股=2","UnitCategory":2,"ValueType":"datetime","FilterCntrl":"fc",
               "ClassName":"TFDateEdit","Value":"v","ImageIndex":4,"Caption":"截止日期","ControlParameters":"w=80",
               "DataSourceFilter":"(TYP == :TYP)","DataSourceFilterParams":"{\"TYP\":2}",
               "DataSourceName":"unit_list"}])x",
           "DefualtValue=date'2024-01-31';FieldName=END_DT;ShowValue=sv;Width=120;ParameterCategory=1;"
           "BeginGroup=true;Filter=A;DataSource=SECU_TYP;Operator=>=;NameValues=A股=1;B股=2;UnitCategory=2;"
           "ValueType=datetime;FilterCntrl=fc;ClassName=TFDateEdit;Value=v;ImageIndex=4;Caption=截止日期;"
           "ControlParameters=w=80;DataSourceFilter=(TYP == :TYP);DataSourceFilterParams={\"TYP\":2};"
           "DataSourceName=unit_list");
    addRow("filters: DefaultValue spelled right is not read", "filters", R"([{"DefaultValue":"1"}])", "()");
    addRow("filters: category and image index as numbers in text", "filters",
           R"([{"ParameterCategory":1,"ImageIndex":1},{"ParameterCategory":0,"ImageIndex":0},
               {"ParameterCategory":1.5,"ImageIndex":1.5},{"ParameterCategory":-2,"ImageIndex":-2},
               {"ParameterCategory":1234567,"ImageIndex":1234567},{"ParameterCategory":123456,"ImageIndex":123456},
               {"ParameterCategory":"1","ImageIndex":"1"},{"ParameterCategory":true,"ImageIndex":true},
               {"ParameterCategory":null,"ImageIndex":null}])",
           "ParameterCategory=1;ImageIndex=1 | () | ParameterCategory=1.5;ImageIndex=1.5 | "
           "ParameterCategory=-2;ImageIndex=-2 | ParameterCategory=1.23457e+06;ImageIndex=1.23457e+06 | "
           "ParameterCategory=123456;ImageIndex=123456 | () | () | ()");
    addRow("filters: integers", "filters",
           R"([{"UnitCategory":2.9},{"UnitCategory":-2.9},{"UnitCategory":"2"},{"UnitCategory":1e40},
               {"Width":120},{"Width":120.5},{"Width":"120"}])",
           "UnitCategory=2 | UnitCategory=-2 | () | UnitCategory=2147483647 | Width=120 | () | ()");
    addRow("filters: text keys take only strings", "filters",
           R"([{"FieldName":5,"DefualtValue":20240131,"Operator":true,"BeginGroup":"true",
               "DataSourceFilterParams":{"TYP":2}}])", "()");
    addRow("filters: document order, elements that are no objects skipped", "filters",
           R"([{"FieldName":"C"},1,{"FieldName":"A"},"B",{"FieldName":"B"}])",
           "FieldName=C | FieldName=A | FieldName=B");
    addRow("filters: empty array", "filters", "[]", "");
    addRow("filters: object text", "filters", R"({"FieldName":"A"})", "");

    addRow("ChartViewConfig: every key", "ChartViewConfig",
           R"({"ChartXData":"rows","Title":"收盘价走势","YTitle":"元","XDisplayDataPattern":1,"XDisplayStep":5,
               "ChartType":"Line","XFieldName":"TRD_DT","XItemNamesFormat":"yyyy-MM-dd","IsSwitchXAxis":true,
               "Style":"shine","AnnoAngle":45,"ToolBarVisible":true,"LegendPosition":2,"IsTurnXAxis":true,
               "XValueType":"datetime","DefaultDataChartType":"Bar","YSetMinMaxValue":"0,100",
               "YSetNullValue":"zero","ChartDataConfigs":[{"DataValues":"dv","FieldName":"CLS_PRC",
               "LegendLable":"收盘价","LegendLableFormat":"{0}","ChartType":"ColumnStacked",
               "ValueFormatString":"n2","IsVisible":true,"UnitCategory":1,"PrevUnitFactor":10,
               "ShowUnitFactor":0.5,"ShowUnit":"元","CaptionShowType":3,"YShaftType":"Right",
               "SetStackGroup":2}]})",
           "ChartXData=rows;Title=收盘价走势;YTitle=元;XDisplayDataPattern=1;XDisplayStep=5;ChartType=Line;"
           "XFieldName=TRD_DT;XItemNamesFormat=yyyy-MM-dd;IsSwitchXAxis=true;Style=shine;AnnoAngle=45;"
           "ToolBarVisible=true;LegendPosition=2;IsTurnXAxis=true;XValueType=datetime;DefaultDataChartType=Bar;"
           "YSetMinMaxValue=0,100;YSetNullValue=zero | DataValues=dv;FieldName=CLS_PRC;LegendLable=收盘价;"
           "LegendLableFormat={0};ChartType=ColumnStacked;ValueFormatString=n2;IsVisible=true;UnitCategory=1;"
           "PrevUnitFactor=10;ShowUnitFactor=0.5;ShowUnit=元;CaptionShowType=3;YShaftType=Right;SetStackGroup=2");
    addRow("ChartViewConfig: series factors and visibility", "ChartViewConfig",
           R"({"ChartDataConfigs":[{"ShowUnitFactor":0.5,"IsVisible":true},{"PrevUnitFactor":1.5},
               {"PrevUnitFactor":10000},{"PrevUnitFactor":"10","ShowUnitFactor":"10"},{"IsVisible":"true"}]})",
           "() | IsVisible=true;ShowUnitFactor=0.5 | () | PrevUnitFactor=10000 | () | ()");
    addRow("ChartViewConfig: a series that is no object is all defaults", "ChartViewConfig",
           R"({"ChartDataConfigs":[{"FieldName":"A"},"B",3,{"FieldName":"C"}]})",
           "() | FieldName=A | () | () | FieldName=C");
    addRow("ChartViewConfig: series not in an array", "ChartViewConfig",
           R"({"Title":"t","ChartDataConfigs":{"FieldName":"A"}})", "Title=t");
    addRow("ChartViewConfig: empty object", "ChartViewConfig", "{}", "()");
    addRow("ChartViewConfig: array text", "ChartViewConfig", R"([{"Title":"t"}])", "()");

    addRow("childView: keys", "childView",
           R"([{"Caption":"公司公告","Propertyparams":"SECU_ID=SECU_ID","ObjShowName":"1002"},
               {"Caption":"none","PropertyParams":"wrong case"},"not a child"])",
           "objVwId=1002;caption=公司公告;propertyParams=SECU_ID=SECU_ID | caption=none");
    addRow("childView: ObjShowName is a number in text", "childView",
           R"([{"ObjShowName":"9007199254740993"},{"ObjShowName":"-5"},{"ObjShowName":"0"},{"ObjShowName":"个股"},
               {"ObjShowName":"12ab"},{"ObjShowName":"0x10"},{"ObjShowName":""},{"ObjShowName":1002},{}])",
           "objVwId=9007199254740993 | objVwId=-5 | () | () | () | () | () | () | ()");

    addRow("Summary: all three figures", "Summary",
           R"([{"Item":"rcount","value":1234},{"Item":"pindex","value":3},{"Item":"psize","value":50}])",
           "rowCount=1234;pageIndex=3;pageSize=50;items=rcount:1234,pindex:3,psize:50");
    addRow("Summary: no psize keeps 200", "Summary", R"([{"Item":"rcount","value":5}])", "rowCount=5;items=rcount:5");
    addRow("Summary: figures as text or fraction read 0", "Summary",
           R"([{"Item":"rcount","value":"12"},{"Item":"psize","value":"100"},{"Item":"pindex","value":1.5}])",
           "pageSize=0;items=rcount:0,psize:0,pindex:0");
    addRow("Summary: item names are exact", "Summary",
           R"([{"Item":"RCount","value":5},{"Item":"psize ","value":9}])", "items=RCount:5,psize :9");
    addRow("Summary: later item wins", "Summary", R"([{"Item":"rcount","value":5},{"Item":"rcount","value":6}])",
           "rowCount=6;items=rcount:5,rcount:6");
    addRow("Summary: an element that is no object ends the list", "Summary",
           R"([{"Item":"rcount","value":5},3,{"Item":"psize","value":10}])", "rowCount=5;items=rcount:5");
    addRow("Summary: first element no object", "Summary", R"(["x",{"Item":"rcount","value":5}])", "()");
    addRow("Summary: not an array", "Summary", R"({"rcount":5})", "()");
    addRow("Summary: items of every kind", "Summary",
           R"([{"Item":"rcount","value":5},{"Item":"GridColumns","value":"[{\"fieldName\":\"A\",\"showStatus\":1}]"},
               {"Item":"other","value":"x"},{"value":3},7,{"Item":"psize","value":9}])",
           "rowCount=5;items=rcount:5,GridColumns:null,other:0,:3;"
           "columns[fieldName=A;visible=true;showStatus=1]");
    addRow("Summary: column list by containment", "Summary",
           R"([{"Item":"CrossGridColumnsList","value":"[{\"fieldName\":\"A\"},{\"fieldName\":\"B\",\"showStatus\":6}]"}])",
           "items=CrossGridColumnsList:null;columns[fieldName=A | fieldName=B;visible=true;showStatus=6]");
    addRow("Summary: column list names are case-sensitive", "Summary",
           R"([{"Item":"gridcolumns","value":"[]"},{"Item":"GRIDCOLUMNS","value":"[]"},{"Item":"GridColumn","value":"[]"}])",
           "items=gridcolumns:0,GRIDCOLUMNS:0,GridColumn:0");

    // The view's flags: names by containment, exact or lower-cased, and a
    // flag is prop_val as text equal to 1.
    addRow("View_Config: show child by containment", "View_Config",
           R"([{"prop_name":"XISSHOWCHILDTAB","prop_val":"1"}])", "viewId=0;showChild=true");
    addRow("View_Config: flag 2 is false", "View_Config", R"([{"prop_name":"isShowChild","prop_val":"2"}])", "viewId=0");
    addRow("View_Config: isorder anywhere, any case", "View_Config",
           R"([{"prop_name":"MyIsOrDeRflag","prop_val":"1"}])", "viewId=0;order=true");
    addRow("View_Config: flags as true text or number are false", "View_Config",
           R"([{"prop_name":"IsOrder","prop_val":"true"},{"prop_name":"IsCross","prop_val":1}])", "viewId=0");
    addRow("View_Config: chart data, turn over, group", "View_Config",
           R"([{"prop_name":"IsGetChartData","prop_val":"1"},{"prop_name":"IsTurnOver","prop_val":"1"},
               {"prop_name":"IsGroup","prop_val":"1"}])",
           "viewId=0;turnOver=true;getChartData=true;group=true");
    addRow("View_Config: frozencount 3", "View_Config", R"([{"prop_name":"frozencount","prop_val":"3"}])",
           "viewId=0;frozenCount=3");
    addRow("View_Config: frozen count by containment", "View_Config",
           R"([{"prop_name":"GridFrozenCountLeft","prop_val":"2"}])", "viewId=0;frozenCount=2");
    addRow("View_Config: frozen count no number", "View_Config",
           R"([{"prop_name":"FrozenCount","prop_val":"3"},{"prop_name":"FrozenCount","prop_val":"three"}])", "viewId=0");
    addRow("View_Config: frozen count JSON number", "View_Config", R"([{"prop_name":"FrozenCount","prop_val":3}])",
           "viewId=0");
    addRow("View_Config: IsCross exact, 01 counts", "View_Config", R"([{"prop_name":"IsCross","prop_val":"01"}])",
           "viewId=0;cross=true");
    addRow("View_Config: exact names in other case or longer", "View_Config",
           R"([{"prop_name":"iscross","prop_val":"1"},{"prop_name":"IsCrossTab","prop_val":"1"},
               {"prop_name":"isturnover","prop_val":"1"},{"prop_name":"groupfields","prop_val":"X"},
               {"prop_name":"IsShowFilter","prop_val":true}])", "viewId=0");
    addRow("View_Config: group fields and format", "View_Config",
           R"x([{"prop_name":"GroupFields","prop_val":"IND_NAME;AREA"},
                {"prop_name":"GroupFormatString","prop_val":"{0} ({1})"}])x",
           "viewId=0;groupFields=IND_NAME;AREA;groupFormat={0} ({1})");
    addRow("View_Config: bands level from its own member", "View_Config",
           R"([{"prop_name":"BANDSLEVEL","prop_val":"3","BandsLevel":4}])", "viewId=0;bandsLevel=4");
    addRow("View_Config: bands level without its member is 0", "View_Config",
           R"([{"prop_name":"BandsLevel","prop_val":"3"}])", "viewId=0;bandsLevel=0");
    addRow("View_Config: vertical header field, any case", "View_Config",
           R"([{"prop_name":"VGRIDCOLHEADERFIELD","prop_val":"RPT_YEAR"}])",
           "viewId=0;vGridColHeaderField=RPT_YEAR;hasVGridColHeaderField=true");
    addRow("View_Config: empty vertical header field", "View_Config",
           R"([{"prop_name":"VGridColHeaderField","prop_val":""}])", "viewId=0");
    addRow("View_Config: isShowFilter takes a JSON bool, not text", "View_Config",
           R"([{"prop_name":"isShowFilter","prop_val":"1"}])", "viewId=0");
    addRow("View_Config: isShowFilter true", "View_Config", R"([{"prop_name":"isShowFilter","prop_val":true}])",
           "viewId=0;showFilter=true");
    addRow("View_Config: first test that holds decides", "View_Config",
           R"([{"prop_name":"isShowChildIsOrder","prop_val":"1"},{"prop_name":"isorderfrozencount","prop_val":"5"}])",
           "viewId=0;showChild=true");
    addRow("View_Config: later row overwrites", "View_Config",
           R"([{"prop_name":"IsCross","prop_val":"1"},{"prop_name":"IsCross","prop_val":"0"}])", "viewId=0");
    addRow("View_Config: no rows", "View_Config", "[]", "()");
    addRow("View_Config: view id of the first row", "View_Config", R"([{"obj_vw_id":1001},{"obj_vw_id":5}])",
           "viewId=1001");
    addRow("View_Config: view id 0 in the first row stays", "View_Config", R"([{"obj_vw_id":0},{"obj_vw_id":5}])",
           "viewId=0");
    addRow("View_Config: first object row without an id", "View_Config",
           R"([1,"IsCross",{"prop_name":"IsCross","prop_val":"1"},{"obj_vw_id":5}])", "viewId=0;cross=true");
    addRow("View_Config: first element no object", "View_Config", R"(["x",[1],{"obj_vw_id":42}])", "viewId=42");
    addRow("View_Config: view id as text", "View_Config", R"([{"obj_vw_id":"1001"}])", "viewId=0");
    addRow("View_Config: view id with a fraction", "View_Config", R"([{"obj_vw_id":10.5}])", "viewId=0");
    addRow("View_Config: sector number any case, first wins", "View_Config",
           R"([{"prop_name":"SECTORNUM","prop_val":"7"},{"prop_name":"sectornum","prop_val":"8"},
               {"prop_name":"RootSectorNum","prop_val":"1"},{"prop_name":"RootSectorNum","prop_val":"2"}])",
           "viewId=0;sectorNum=7;rootSectorNum=1");
    addRow("View_Config: sector names exact", "View_Config",
           R"([{"prop_name":"rootsectornum","prop_val":"1"},{"prop_name":"SectorNumX","prop_val":"1"},
               {"prop_name":"RootSectorNums","prop_val":"2"},{"prop_name":"SectorNum","prop_val":1001}])", "viewId=0");
    addRow("View_Config: empty order", "View_Config", R"([{"prop_name":"Order","prop_val":""}])", "viewId=0");
    addRow("View_Config: two terms", "View_Config", R"([{"prop_name":"order","prop_val":"A asc,B DESC"}])",
           R"(viewId=0;orderProperty=order:{"A":1,"B":-1})");
    addRow("View_Config: DESC any case, anything else ascends", "View_Config",
           R"([{"prop_name":"ORDER","prop_val":"A DeSc,B down"}])", R"(viewId=0;orderProperty=order:{"A":-1,"B":1})");
    addRow("View_Config: empty parts dropped", "View_Config",
           R"([{"prop_name":"Order","prop_val":",,A  desc,, B asc ,"}])", R"(viewId=0;orderProperty=order:{"A":-1,"B":1})");
    addRow("View_Config: a field alone does not count", "View_Config", R"([{"prop_name":"Order","prop_val":"A"}])",
           "viewId=0;orderProperty=order:{}");
    addRow("View_Config: three parts do not count", "View_Config",
           R"([{"prop_name":"Order","prop_val":"A desc x,B desc"}])", R"(viewId=0;orderProperty=order:{"B":-1})");
    addRow("View_Config: later term of a field wins", "View_Config",
           R"([{"prop_name":"Order","prop_val":"A desc,A asc"}])", R"(viewId=0;orderProperty=order:{"A":1})");
    addRow("View_Config: first order row wins", "View_Config",
           R"([{"prop_name":"Order","prop_val":"A desc"},{"prop_name":"order","prop_val":"B asc"}])",
           R"(viewId=0;orderProperty=order:{"A":-1})");
    addRow("View_Config: first order row empty", "View_Config",
           R"([{"prop_name":"Order","prop_val":""},{"prop_name":"order","prop_val":"B asc"}])", "viewId=0");
    addRow("View_Config: OrderBy is another row", "View_Config", R"([{"prop_name":"OrderBy","prop_val":"A desc"}])",
           "viewId=0");

    // Entries: every object element, in order; an EXTEND entry of a known
    // name, compared without regard to case, carries its table.
    addRow("View_Config entries: kept as text", "View_Config entries",
           R"([{"obj_vw_id":3,"prop_typ":"VIEW","prop_name":"ObjViewType","prop_val":"Table"},42,
               {"obj_vw_id":7,"prop_typ":"EXTEND","prop_name":"relatedView","prop_val":"","ext_prop_val":"[1,2]"},
               {"obj_vw_id":4,"prop_typ":"VIEW","prop_name":"Bands","prop_val":"[]","ext_prop_val":"[]"},
               {"prop_val":12}])",
           "3/VIEW/ObjViewType=Table | 7/EXTEND/relatedView= | 4/VIEW/Bands=[] | 0//=");
    addRow("View_Config entries: tables by name", "View_Config entries",
           R"([{"prop_typ":"EXTEND","prop_name":"Bands","ext_prop_val":"[]"},
               {"prop_typ":"extend","prop_name":"bands","ext_prop_val":"[]"},
               {"prop_typ":"EXTEND","prop_name":"childView","ext_prop_val":"[]"},
               {"prop_typ":"Extend","prop_name":"CHILDVIEW","ext_prop_val":"[]"},
               {"prop_typ":"EXTEND","prop_name":"Filters","ext_prop_val":"[]"},
               {"prop_typ":"EXTEND","prop_name":"chartviewconfig","ext_prop_val":"{}"},
               {"prop_typ":"EXTEND","prop_name":"BandsEx","ext_prop_val":"[]"},
               {"prop_typ":"EXTENDED","prop_name":"Bands","ext_prop_val":"[]"}])",
           "0/EXTEND/Bands= #8*[] | 0/extend/bands= #8[] | 0/EXTEND/childView= #9*[] | 0/Extend/CHILDVIEW= #9[] | "
           "0/EXTEND/Filters= #10*[] | 0/EXTEND/chartviewconfig= #11*[()] | 0/EXTEND/BandsEx= | 0/EXTENDED/Bands=");
    addRow("View_Config entries: the first table of a kind is the view's", "View_Config entries",
           R"([{"prop_typ":"EXTEND","prop_name":"relatedView","ext_prop_val":"x"},
               {"prop_typ":"EXTEND","prop_name":"BANDS","ext_prop_val":"[{\"FieldName\":\"FIRST\"}]"},
               {"prop_typ":"EXTEND","prop_name":"Bands",
                "ext_prop_val":"[{\"FieldName\":\"SECOND\"},{\"FieldName\":\"MORE\"}]"}])",
           "0/EXTEND/relatedView= | 0/EXTEND/BANDS= #8*[fieldName=FIRST] | "
           "0/EXTEND/Bands= #8[fieldName=SECOND | fieldName=MORE]");

    // Field records: every column as text; shown is isFieldVisible of the
    // record's name, which follows vw_sts "1" or "6" of the first record.
    addRow("Object_View_Config: columns as text", "Object_View_Config",
           R"([{"prop_typ":"FIELD","obj_vw_id":1001,"obj_prop_name":"SECU_CODE","obj_prop_cap":"代码","vw_sts":1,
                "vw_fmt":"F","dft_val":2.5,"prop_sn":3,"cnv_cfg":true,"unknown":"x"},
               {"obj_prop_name":"B"},"no object",{"obj_vw_id":null,"obj_prop_name":[1]}])",
           "prop_typ=FIELD;obj_vw_id=1001;obj_prop_name=SECU_CODE;obj_prop_cap=代码;vw_sts=1;vw_fmt=F;dft_val=2.5;"
           "prop_sn=3;cnv_cfg=true;shown=true | obj_prop_name=B | () | obj_vw_id=");
    addRow("Object_View_Config: display settings", "Object_View_Config",
           R"([{"obj_prop_name":"TRD_AMT","ots_cfg":"{\"FieldName\":\"TRD_AMT\",\"Caption\":\"成交额\",)"
           R"(\"ColumnType\":\"BandedGridColumnWithUnit\",\"Url\":\"view:?x\",\"Level\":2,\"SN\":7,)"
           R"(\"ValueType\":\"Decimal\",\"Visible\":true,\"ShowUnit\":\"万元\",\"FormatString\":\"n2\",)"
           R"(\"TextAlignment\":3,\"NoSort\":true,\"PrevUnitFactor\":1.9,\"ShowUnitFactor\":10000.5,)"
           R"(\"CaptionShowType\":1,\"Width\":120.7,\"UnboundExpression\":\"[A]*2\",\"UnitCategory\":2,)"
           R"(\"CellStyleExpression\":\"red\",\"OwnerBand\":\"B\",\"ShowStatus\":6,\"StatExpression\":\"SUM\"}"}])",
           "obj_prop_name=TRD_AMT;ots_cfg[columnType=BandedGridColumnWithUnit;fieldName=TRD_AMT;url=view:?x;"
           "valueType=Decimal;unboundExpression=[A]*2;unitCategory=2;prevUnitFactor=1;showUnitFactor=10000;"
           "showUnit=万元;captionShowType=1;caption=成交额;width=120;formatString=n2;visible=true;noSort=true;"
           "cellStyleExpression=red;textAlignment=3;sn=7;level=2]");
    addRow("Object_View_Config: settings that are no object text read empty", "Object_View_Config",
           R"([{"obj_prop_name":"A"},{"obj_prop_name":"B","ots_cfg":"{\"FieldName\":"},
               {"obj_prop_name":"C","ots_cfg":"[{\"FieldName\":\"C\"}]"},
               {"obj_prop_name":"D","ots_cfg":{"FieldName":"D"}},{"obj_prop_name":"E","ots_cfg":5}])",
           "obj_prop_name=A | obj_prop_name=B | obj_prop_name=C | obj_prop_name=D | obj_prop_name=E");
    addRow("Object_View_Config: visibility by vw_sts", "Object_View_Config",
           R"([{"obj_prop_name":"S1","vw_sts":"1"},{"obj_prop_name":"S6","vw_sts":"6"},
               {"obj_prop_name":"S2","vw_sts":"2"},{"obj_prop_name":"S0","vw_sts":"0"},{"obj_prop_name":"N"},
               {"obj_prop_name":"I6","vw_sts":6},{"obj_prop_name":"S01","vw_sts":"01"},
               {"obj_prop_name":"H","vw_sts":"1","ots_cfg":"{\"FieldName\":\"H\",\"Visible\":false}"},
               {"obj_prop_name":"S1","vw_sts":"2"}])",
           "obj_prop_name=S1;vw_sts=1;shown=true | obj_prop_name=S6;vw_sts=6;shown=true | obj_prop_name=S2;vw_sts=2 | "
           "obj_prop_name=S0;vw_sts=0 | obj_prop_name=N | obj_prop_name=I6;vw_sts=6;shown=true | "
           "obj_prop_name=S01;vw_sts=01 | obj_prop_name=H;vw_sts=1;shown=true;ots_cfg[fieldName=H] | "
           "obj_prop_name=S1;vw_sts=2;shown=true");
    addRow("Object_View_Config: not an array", "Object_View_Config", R"({"obj_prop_name":"A"})", "");

    addRow("Object_Property: rows under DATA", "Object_Property",
           R"({"DATA":[{"OBJ_ID":38,"REF_RELA":"r","PROP_SOUR":"s","PROP_TYP":"t","PROP_NAME":"SECU_ID",
               "PROP_CAP":"证券"},7,{"obj_id":5,"prop_name":"lower","Prop_Cap":"mixed"}]})",
           "OBJ_ID=38;REF_RELA=r;PROP_SOUR=s;PROP_TYP=t;PROP_NAME=SECU_ID;PROP_CAP=证券 | ()");
    addRow("Object_Property: DATA is exact", "Object_Property", R"({"Data":[{"PROP_NAME":"A"}]})", "");
    addRow("Object_Property: rows without DATA", "Object_Property", R"([{"PROP_NAME":"A"}])", "");
}

void tst_ConfigTables::read()
{
    QFETCH(QString, kind);
    QFETCH(QString, input);
    QFETCH(QString, expected);

    MessageLog log;
    const auto table = TableFields::make(kind);
    table->initWith(TableFields::value(kind, input));
    QCOMPARE(TableFields::render(kind, *table), expected);
    QCOMPARE(log.count(), 0);
}

void tst_ConfigTables::reread_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("expected");

    auto row = [](const char* name, const char* kind, const QString& first, const QString& second,
                  const QString& expected) { QTest::newRow(name) << QString(kind) << first << second << expected; };

    const QString data = R"([{"old":1}])";
    row("Data: rows", "Data", data, R"([{"A":1},{"A":2}])", R"({"A":1} | {"A":2})");
    row("Data: empty array", "Data", data, "[]", "");
    row("Data: elements that are no objects are empty rows", "Data", data, R"([1,{"A":1},"x",null])",
        R"({} | {"A":1} | {} | {})");
    row("Data: object", "Data", data, R"({"A":1})", "");
    row("Data: text", "Data", data, R"("[{\"A\":1}]")", "");

    const QString name = R"([{"obj_vw_name":"old"}])";
    row("Object_View: first element", "Object_View", name, R"([{"obj_vw_name":"A股行情"},{"obj_vw_name":"x"}])",
        "name=A股行情");
    row("Object_View: first element without name", "Object_View", name, R"([{"obj_vw_id":1},{"obj_vw_name":"x"}])",
        "()");
    row("Object_View: first element no object", "Object_View", name, R"([1,{"obj_vw_name":"x"}])", "()");
    row("Object_View: name as number", "Object_View", name, R"([{"obj_vw_name":5}])", "()");
    row("Object_View: empty array keeps the name", "Object_View", name, "[]", "name=old");
    row("Object_View: object keeps the name", "Object_View", name, R"({"obj_vw_name":"x"})", "name=old");

    // The view table is filled once: its flags outlive a second read, its
    // entries and look-ups do not.
    const QString view = R"([{"obj_vw_id":7,"prop_name":"IsCross","prop_val":"1"},
                             {"prop_name":"SectorNum","prop_val":"11"},
                             {"prop_typ":"EXTEND","prop_name":"Bands","ext_prop_val":"[{\"FieldName\":\"A\"}]"}])";
    row("View_Config: flags outlive an empty read", "View_Config", view, "[]", "viewId=7;cross=true");
    row("View_Config: flags outlive a read of no array", "View_Config", view, R"("not an array")",
        "viewId=7;cross=true");
    row("View_Config entries: entries and tables go", "View_Config entries", view, "[]", "");

    row("Object_View_Config: replaced", "Object_View_Config", R"([{"obj_prop_name":"A","vw_sts":"2"}])",
        R"([{"obj_prop_name":"C"}])", "obj_prop_name=C");
    row("Object_View_Config: no array empties", "Object_View_Config", R"([{"obj_prop_name":"A","vw_sts":"2"}])",
        R"({"obj_prop_name":"A"})", "");

    row("Bands: replaced", "Bands", R"([{"FieldName":"A"},{"FieldName":"B"}])", R"([{"FieldName":"C"}])",
        "fieldName=C");
    row("Bands: emptied by broken text", "Bands", R"([{"FieldName":"A"}])", "broken", "");
    row("filters: emptied by broken text", "filters", R"([{"FieldName":"A"}])", "not json", "");
    const QString chart = R"({"Title":"t","AnnoAngle":45,"IsSwitchXAxis":true,"ChartDataConfigs":[{"FieldName":"A"}]})";
    row("ChartViewConfig: cleared by broken text", "ChartViewConfig", chart, "{broken", "()");
    row("ChartViewConfig: cleared by an empty object", "ChartViewConfig", chart, "{}", "()");
    const QString child = R"([{"ObjShowName":"5"}])";
    row("childView: emptied by an empty array", "childView", child, "[]", "");
    row("childView: emptied by object text", "childView", child, R"({"ObjShowName":"1"})", "");
    row("childView: emptied by broken text", "childView", child, R"([{"ObjShowName":"1"})", "");

    // A later page fills the same summary again: what it does not say stays,
    // and a new column list replaces the old one.
    const QString summary = R"([{"Item":"rcount","value":500},{"Item":"psize","value":50},
                                {"Item":"GridColumns","value":"[{\"fieldName\":\"A\"}]"}])";
    row("Summary: figures and columns last", "Summary", summary, R"([{"Item":"pindex","value":2}])",
        "rowCount=500;pageIndex=2;pageSize=50;items=pindex:2;columns[fieldName=A]");
    row("Summary: no array keeps figures", "Summary", summary, R"("not an array")",
        "rowCount=500;pageSize=50;columns[fieldName=A]");
    row("Summary: last column list wins", "Summary", summary,
        R"([{"Item":"GridColumns","value":"[{\"fieldName\":\"B\"}]"},{"Item":"rcount","value":1},
            {"Item":"MoreGridColumns","value":"[{\"fieldName\":\"C\"},{\"fieldName\":\"D\"}]"}])",
        "rowCount=1;pageSize=50;items=GridColumns:null,rcount:1,MoreGridColumns:null;columns[fieldName=C | fieldName=D]");
}

void tst_ConfigTables::reread()
{
    QFETCH(QString, kind);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, expected);

    MessageLog log;   // broken texts are reported; badText checks how
    const auto table = TableFields::make(kind);
    table->initWith(TableFields::value(kind, first));
    table->initWith(TableFields::value(kind, second));
    QCOMPARE(TableFields::render(kind, *table), expected);
}

void tst_ConfigTables::badText_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("reporter");
    QTest::addColumn<QString>("expected");

    // The three tables of embedded lists share one reader: each kind once
    // with its own name in the report, each kind of fault once.
    const QJsonArray one { QJsonObject { { "FieldName", "A" } } };
    const QJsonObject object { { "FieldName", "A" } };
    QTest::newRow("Bands: broken text") << "Bands" << QJsonValue("[{\"FieldName\":") << "TFHeaderFieldConfigData" << "";
    QTest::newRow("Bands: scalar text") << "Bands" << QJsonValue("3") << "TFHeaderFieldConfigData" << "";
    QTest::newRow("Bands: array, not text") << "Bands" << QJsonValue(one) << "TFHeaderFieldConfigData" << "";
    QTest::newRow("filters: array, not text") << "filters" << QJsonValue(one) << "TFFilterJsonTable" << "";
    QTest::newRow("filters: trailing garbage") << "filters" << QJsonValue(jsonText(one) + "x") << "TFFilterJsonTable"
                                               << "";
    QTest::newRow("ChartViewConfig: object, not text") << "ChartViewConfig" << QJsonValue(object)
                                                       << "TFChartViewJsonTable" << "()";
    QTest::newRow("ChartViewConfig: broken text") << "ChartViewConfig" << QJsonValue("{\"Title\":")
                                                  << "TFChartViewJsonTable" << "()";
    QTest::newRow("ChartViewConfig: empty text") << "ChartViewConfig" << QJsonValue("") << "TFChartViewJsonTable"
                                                 << "()";
    QTest::newRow("childView: array, not text") << "childView" << QJsonValue(QJsonArray { QJsonObject {
                                                       { "ObjShowName", "1" } } })
                                                << "TFChildViewJsonTable" << "";
    QTest::newRow("Summary: column list not text")
        << "Summary" << QJsonValue(QJsonArray { QJsonObject { { "Item", "GridColumns" }, { "value", one } } })
        << "TFHeaderFieldConfigData" << "items=GridColumns:null;columns[]";
    // An EXTEND entry without ext_prop_val makes its table and leaves it
    // unread; a value that is no string is read, and fails.
    QTest::newRow("View_Config entries: extend values")
        << "View_Config entries"
        << QJsonValue(QJsonArray { QJsonObject { { "prop_typ", "EXTEND" }, { "prop_name", "filters" } },
                                   QJsonObject { { "prop_typ", "EXTEND" }, { "prop_name", "Bands" },
                                                 { "ext_prop_val", one } } })
        << "TFHeaderFieldConfigData" << "0/EXTEND/filters= #10*[] | 0/EXTEND/Bands= #8*[]";
}

void tst_ConfigTables::badText()
{
    QFETCH(QString, kind);
    QFETCH(QJsonValue, value);
    QFETCH(QString, reporter);
    QFETCH(QString, expected);

    MessageLog log;
    const auto table = TableFields::make(kind);
    table->initWith(value);
    QCOMPARE(TableFields::render(kind, *table), expected);
    QCOMPARE(log.count(), 1);
    const QString line = log.messages(QtDebugMsg).value(0);
    QVERIFY2(QRegularExpression("^\\S.*" + reporter + "::initWith\\(.*\\) Json parse error: \\S").match(line).hasMatch(),
             qPrintable(line));
}

void tst_ConfigTables::announcements_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    // Each announcement: view id, caption, and how many children (or view
    // entries) the table held when it came: a child is announced as it is
    // read, not after the list.
    addRow("childView: each as it is read", "childView",
           R"([{"Caption":"A","ObjShowName":"1"},"not a child",{"Caption":"none"},{"Caption":"B","ObjShowName":"2"}])",
           "1:A@1, 2:B@3");
    addRow("childView: only views that are not 0", "childView",
           R"([{"ObjShowName":"0"},{"ObjShowName":"x"},{"ObjShowName":1002},{"Caption":"c","ObjShowName":"-5"}])",
           "-5:c@4");
    addRow("View_Config: every child table passes them on", "View_Config",
           R"([{"prop_name":"IsCross","prop_val":"1"},
               {"prop_typ":"EXTEND","prop_name":"childView","ext_prop_val":)"
           R"("[{\"Caption\":\"个股行情\",\"ObjShowName\":\"1002\"},{\"Caption\":\"无编号\",\"ObjShowName\":\"\"},)"
           R"({\"Caption\":\"公告\",\"ObjShowName\":\"1003\"}]"},
               {"prop_typ":"EXTEND","prop_name":"childView","ext_prop_val":"[{\"ObjShowName\":\"9\"}]"}])",
           "1002:个股行情@1, 1003:公告@1, 9:@2");
}

void tst_ConfigTables::announcements()
{
    QFETCH(QString, kind);
    QFETCH(QString, input);
    QFETCH(QString, expected);

    const auto table = TableFields::make(kind);
    QStringList heard;
    connect(table.get(), &TFBaseJsonTable::sigJsonData, this, [&](qint64 id, const QString& caption) {
        int held = -1;
        if (auto* children = qobject_cast<TFChildViewJsonTable*>(table.get()))
            held = children->children().size();
        else if (auto* view = qobject_cast<TFViewConfigTable*>(table.get()))
            held = view->entries().size();
        heard.append(QStringLiteral("%1:%2@%3").arg(id).arg(caption).arg(held));
    });
    table->initWith(TableFields::value(kind, input));
    QCOMPARE(heard.join(", "), expected);
}

void tst_ConfigTables::merge_data()
{
    QTest::addColumn<QString>("bands");
    QTest::addColumn<QString>("fields");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("warnings");

    // Display settings come from the field table, visibility from its
    // vw_sts; name, caption, band, level and order stay those of the bands.
    QTest::newRow("settings taken")
        << R"([{"ColumnType":"BandedGridColumnWithUnit","OwnerBand":"B_PRICE","FieldName":"TRD_AMT","Url":"v",
               "ValueType":"Decimal","UnboundExpression":"[A]+[B]","UnitCategory":2,"PrevUnitFactor":1,
               "ShowUnitFactor":10000,"ShowUnit":"万元","CaptionShowType":3,"Caption":"成交额","Width":120,
               "FormatString":"n2","Visible":false,"NoSort":true,"CellStyleExpression":"red","TextAlignment":3,
               "ShowStatus":6,"SN":12,"Level":2,"StatExpression":"SUM"}])"
        << R"([{"obj_prop_name":"TRD_AMT","vw_sts":"1","ots_cfg":"{\"FieldName\":\"TRD_AMT\",\"Caption\":\"另一个\",)"
           R"(\"ColumnType\":\"HyperLinkEdit\",\"Url\":\"u\",\"Level\":9,\"SN\":99,\"ValueType\":\"String\",)"
           R"(\"Visible\":false,\"ShowUnit\":\"亿元\",\"FormatString\":\"n4\",\"TextAlignment\":1,\"NoSort\":false,)"
           R"(\"PrevUnitFactor\":100,\"ShowUnitFactor\":100000000,\"CaptionShowType\":1,\"Width\":77.9,)"
           R"(\"UnboundExpression\":\"\",\"UnitCategory\":5,\"CellStyleExpression\":\"blue\"}"}])"
        << "columnType=HyperLinkEdit;ownerBand=B_PRICE;fieldName=TRD_AMT;url=u;valueType=String;unitCategory=5;"
           "prevUnitFactor=100;showUnitFactor=100000000;showUnit=亿元;captionShowType=1;caption=成交额;width=77;"
           "formatString=n4;visible=true;cellStyleExpression=blue;textAlignment=1;sn=12;level=2"
        << "";
    QTest::newRow("unknown field keeps its own")
        << R"([{"FieldName":"KNOWN","Visible":true,"Width":50},
               {"FieldName":"MISSING","Visible":true,"Width":60,"FormatString":"n1"}])"
        << R"([{"obj_prop_name":"KNOWN","vw_sts":"2","ots_cfg":"{\"FieldName\":\"KNOWN\",\"Width\":40}"}])"
        << "fieldName=KNOWN;width=40 | fieldName=MISSING;width=60;formatString=n1;visible=true"
        << "cant find field name: MISSING";
    // Found is by obj_prop_name, but what counts is the field name inside
    // the settings: without one the field keeps its own.
    QTest::newRow("settings without a field name")
        << R"([{"FieldName":"A","Visible":true,"Width":10}])"
        << R"([{"obj_prop_name":"A","vw_sts":"2","ots_cfg":"{\"Width\":99}"}])"
        << "fieldName=A;width=10;visible=true" << "cant find field name: A";
    QTest::newRow("no field table") << R"([{"FieldName":"A","Visible":true},{"FieldName":"B"}])" << QString()
                                    << "fieldName=A;visible=true | fieldName=B"
                                    << "cant find field name: A\ncant find field name: B";
}

void tst_ConfigTables::merge()
{
    QFETCH(QString, bands);
    QFETCH(QString, fields);
    QFETCH(QString, expected);
    QFETCH(QString, warnings);

    TFHeaderFieldConfigData table(nullptr, true);
    table.initWith(bands);
    TFObjectViewConfigTable fieldTable;
    fieldTable.initWith(jsonValue(fields));

    MessageLog log;
    table.mergeWith(fields.isEmpty() ? nullptr : &fieldTable);
    QCOMPARE(TableFields::render("Bands", table), expected);
    QCOMPARE(log.messages(QtWarningMsg).join('\n'), warnings);
    QCOMPARE(log.count(), log.messages(QtWarningMsg).size());
}

void tst_ConfigTables::lookups()
{
    // Fields: the first record of that obj_prop_name, by exact name; a field
    // the table does not know is visible.
    TFObjectViewConfigTable fields;
    QVERIFY(fields.isFieldVisible("A"));
    fields.initWith(jsonValue(R"([{"obj_prop_name":"A","vw_sts":"2","ots_cfg":"{\"FieldName\":\"A1\"}"},
                                  {"obj_prop_name":"A","vw_sts":"1","ots_cfg":"{\"FieldName\":\"A2\"}"},
                                  {"obj_prop_name":"B","ots_cfg":"{\"FieldName\":\"C\"}"}])"));
    QCOMPARE(fields.headerFieldInfo("A").fieldName, QString("A1"));
    QVERIFY(!fields.isFieldVisible("A"));
    QCOMPARE(fields.headerFieldInfo("B").fieldName, QString("C"));
    QCOMPARE(fields.headerFieldInfo("C").fieldName, QString());
    QCOMPARE(fields.headerFieldInfo("a").fieldName, QString());
    QVERIFY(fields.isFieldVisible("C"));

    // Child views: the parameters of the first child with that view.
    TFViewConfigTable view;
    QCOMPARE(view.childViewParams(7), QString());
    view.initWith(jsonValue(R"([{"prop_typ":"EXTEND","prop_name":"childView","ext_prop_val":)"
        R"("[{\"Propertyparams\":\"first\",\"ObjShowName\":\"7\"},{\"Propertyparams\":\"second\",\"ObjShowName\":\"7\"},)"
        R"({\"Propertyparams\":\"none\"},{\"PropertyParams\":\"wrong case\",\"ObjShowName\":\"8\"}]"}])"));
    QCOMPARE(view.childViewParams(7), QString("first"));
    QCOMPARE(view.childTable()->propertyParams(0), QString("none"));
    QCOMPARE(view.childViewParams(8), QString());
    QCOMPARE(view.childViewParams(9), QString());

    // A cross table's columns: the first of that name.
    TFSummaryJsonTable summary;
    QCOMPARE(summary.headerFieldInfo("A").fieldName, QString());
    summary.initWith(jsonValue(R"([{"Item":"GridColumns","value":)"
        R"("[{\"fieldName\":\"2023__NET_PRF\",\"caption\":\"2023年\",\"width\":90.5},)"
        R"({\"fieldName\":\"2023__NET_PRF\",\"caption\":\"again\"}]"}])"));
    QCOMPARE(summary.headerFieldInfo("2023__NET_PRF").caption, QString("2023年"));
    QCOMPARE(summary.headerFieldInfo("2023__NET_PRF").width, 90);
    QCOMPARE(summary.headerFieldInfo("2024__NET_PRF").fieldName, QString());
}

QTEST_APPLESS_MAIN(tst_ConfigTables)
#include "tst_configtables.moc"
