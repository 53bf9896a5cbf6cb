#include "demodatagenerator.h"

#include <QDate>
#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QStringList>
#include <QVariantList>

#include <sqlite3.h>

#include <cmath>
#include <functional>

namespace SubjectService {

namespace {

// splitmix64: small, fast and the same everywhere, unlike the distributions
// of the standard library.
class Random
{
public:
    explicit Random(quint64 seed) : m_state(seed) {}
    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double uniform() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }
    double uniform(double lo, double hi) { return lo + (hi - lo) * uniform(); }
    int below(int n) { return int(next() % quint64(n)); }
    double normal()
    {
        const double u1 = std::max(uniform(), 1e-12);
        const double u2 = uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }
    template<typename T>
    const T &pick(const QList<T> &list) { return list.at(below(list.size())); }

private:
    quint64 m_state;
};

double round2(double v) { return std::round(v * 100.0) / 100.0; }
double round4(double v) { return std::round(v * 10000.0) / 10000.0; }

const QDate kLastDay(2024, 12, 31);

QList<QDate> tradingDays(int count)
{
    QList<QDate> days;
    for (QDate d = kLastDay; days.size() < count; d = d.addDays(-1)) {
        if (d.dayOfWeek() <= 5)
            days.prepend(d);
    }
    return days;
}

struct Industry { QString code; QString name; QStringList suffixes; double margin; };

const QList<Industry> &industries()
{
    static const QList<Industry> list = {
        {"801780", "银行", {"银行", "农商行"}, 0.32},
        {"801790", "非银金融", {"证券", "保险", "信托"}, 0.22},
        {"801180", "房地产", {"地产", "置业", "城建"}, 0.06},
        {"801150", "医药生物", {"医药", "生物", "药业"}, 0.14},
        {"801080", "电子", {"电子", "光电", "微电子"}, 0.09},
        {"801750", "计算机", {"科技", "软件", "信息"}, 0.08},
        {"801120", "食品饮料", {"食品", "酒业", "乳业"}, 0.18},
        {"801880", "汽车", {"汽车", "汽配", "动力"}, 0.05},
        {"801730", "电力设备", {"电气", "新能源", "储能"}, 0.09},
        {"801030", "化工", {"化工", "化学", "新材"}, 0.08},
        {"801890", "机械设备", {"机械", "重工", "装备"}, 0.07},
        {"801050", "有色金属", {"矿业", "铝业", "铜业"}, 0.06},
        {"801760", "传媒", {"传媒", "文化", "影视"}, 0.07},
        {"801170", "交通运输", {"物流", "航运", "港务"}, 0.08},
        {"801720", "建筑装饰", {"建工", "路桥", "装饰"}, 0.04},
        {"801160", "公用事业", {"电力", "水务", "燃气"}, 0.10},
    };
    return list;
}

const QStringList kProvinces = {"北京", "上海", "广东", "浙江", "江苏", "山东", "福建", "四川",
                                "湖北", "湖南", "安徽", "河南", "天津", "重庆"};
const QStringList kRegionOfProvince = {"HB", "HD", "HN", "HD", "HD", "HD", "HD", "XN",
                                       "HZ", "HZ", "HD", "HZ", "HB", "XN"};
const QStringList kNameHeads = {"华", "中", "东方", "长江", "海", "金", "新", "国", "天", "恒",
                                "光明", "三", "宏", "鼎", "联", "通", "盛", "安", "永", "嘉",
                                "博", "万", "凯", "泰", "瑞", "明", "科", "远", "信", "和",
                                "大", "南", "北", "西部", "晨", "兴", "汇", "立", "福", "正"};
const QStringList kNameMiddles = {"", "达", "源", "丰", "创", "润", "成", "隆", "宇", "峰"};

class Writer
{
public:
    explicit Writer(sqlite3 *db) : m_db(db) {}

    bool exec(const QString &sql)
    {
        char *message = nullptr;
        if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK) {
            m_error = QStringLiteral("%1: %2").arg(sql.left(80), QString::fromUtf8(message));
            sqlite3_free(message);
            return false;
        }
        return true;
    }

    // Inserts rows into a table through one prepared statement.
    bool insert(const QString &table, int columnCount,
                const std::function<bool(QVariantList &row)> &nextRow)
    {
        QStringList marks;
        for (int i = 0; i < columnCount; ++i)
            marks << QStringLiteral("?");
        const QByteArray sql = QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(table, marks.join(',')).toUtf8();
        sqlite3_stmt *stmt = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.constData(), -1, &stmt, nullptr) != SQLITE_OK) {
            m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
            return false;
        }
        QVariantList row;
        bool ok = true;
        while (ok) {
            row.clear();
            if (!nextRow(row))
                break;
            for (int i = 0; i < row.size(); ++i) {
                const QVariant &v = row.at(i);
                switch (v.userType()) {
                case QMetaType::Int:
                case QMetaType::LongLong:
                    sqlite3_bind_int64(stmt, i + 1, v.toLongLong());
                    break;
                case QMetaType::Double:
                    sqlite3_bind_double(stmt, i + 1, v.toDouble());
                    break;
                case QMetaType::QDate: {
                    const QByteArray text = v.toDate().toString(Qt::ISODate).toUtf8();
                    sqlite3_bind_text(stmt, i + 1, text.constData(), text.size(), SQLITE_TRANSIENT);
                    break;
                }
                case QMetaType::UnknownType:
                    sqlite3_bind_null(stmt, i + 1);
                    break;
                default: {
                    const QByteArray text = v.toString().toUtf8();
                    sqlite3_bind_text(stmt, i + 1, text.constData(), text.size(), SQLITE_TRANSIENT);
                }
                }
            }
            if (sqlite3_step(stmt) != SQLITE_DONE) {
                m_error = QStringLiteral("%1: %2").arg(table, QString::fromUtf8(sqlite3_errmsg(m_db)));
                ok = false;
            }
            sqlite3_reset(stmt);
        }
        sqlite3_finalize(stmt);
        return ok;
    }

    QString error() const { return m_error; }

private:
    sqlite3 *m_db;
    QString m_error;
};

const char *const kSchema = R"SQL(
CREATE TABLE demo_meta (key TEXT PRIMARY KEY, value INTEGER);
CREATE TABLE stock (SECU_ID INTEGER PRIMARY KEY, SECU_CODE TEXT, SECU_SHT TEXT, COM_ID INTEGER, COM_NAME TEXT,
  COM_PROFILE TEXT, MKT TEXT, IND_CODE TEXT, IND_NAME TEXT, PROVINCE TEXT, LIST_DATE DATE, TRADE_DATE DATE,
  CLOSE_PRICE REAL, CHG_PCT REAL, OPEN_PRICE REAL, HIGH_PRICE REAL, LOW_PRICE REAL, VOLUME REAL, AMOUNT REAL,
  TURNOVER REAL, PE REAL, PB REAL, TOTAL_SHARES REAL, FLOAT_SHARES REAL, EPS REAL, BVPS REAL, ROE REAL,
  SECU_TYP_CODE INTEGER);
CREATE TABLE stock_finance (SECU_ID INTEGER, SECU_CODE TEXT, SECU_SHT TEXT, IND_NAME TEXT, END_DATE DATE,
  YEAR INTEGER, QUARTER INTEGER, REVENUE REAL, NET_PROFIT REAL, TOTAL_ASSETS REAL, TOTAL_LIAB REAL, EQUITY REAL,
  EPS REAL, ROE REAL, GROSS_MARGIN REAL, DEBT_RATIO REAL);
CREATE TABLE stock_daily (SECU_ID INTEGER, TRADE_DATE DATE, OPEN_PRICE REAL, HIGH_PRICE REAL, LOW_PRICE REAL,
  CLOSE_PRICE REAL, VOLUME REAL, AMOUNT REAL);
CREATE TABLE stock_holder (SECU_ID INTEGER, RANK INTEGER, HOLDER_NAME TEXT, HOLDER_TYPE TEXT, HOLD_SHARES REAL,
  HOLD_PCT REAL, END_DATE DATE);
CREATE TABLE industry (IND_CODE TEXT, IND_NAME TEXT, NAME TEXT, VALUE TEXT);
CREATE TABLE industry_stat (IND_CODE TEXT, IND_NAME TEXT, YEAR INTEGER, REVENUE REAL, NET_PROFIT REAL, ROE REAL,
  COMPANY_CNT INTEGER);
CREATE TABLE province (NAME TEXT, VALUE TEXT, REGION TEXT);
CREATE TABLE block (SECT_ID INTEGER, P_SECT_ID INTEGER, SECT_NAME TEXT, SECU_TYP_CODE INTEGER);
CREATE TABLE block_member (SECT_ID INTEGER, SECU_ID INTEGER);
CREATE TABLE constant (VALUE TEXT, NAME TEXT, TYPE TEXT, TYPE_DESC TEXT, FILTER1 TEXT);
CREATE TABLE macro_monthly (END_DATE DATE, YM YEARMONTH, YEAR INTEGER, MONTH INTEGER, CPI_YOY REAL, PPI_YOY REAL,
  M2_YOY REAL, RETAIL_SALES REAL, IVA_YOY REAL, PMI REAL, EXPORT_AMT REAL);
CREATE TABLE macro_gdp (END_DATE DATE, YEAR INTEGER, QUARTER INTEGER, PERIOD_NAME TEXT, GDP REAL, PRIMARY_IND REAL,
  SECONDARY_IND REAL, TERTIARY_IND REAL, GDP_YOY REAL);
CREATE TABLE bond (SECU_ID INTEGER PRIMARY KEY, SECU_CODE TEXT, SECU_SHT TEXT, BOND_TYPE TEXT, ISSUER TEXT,
  RATING TEXT, COUPON_RATE REAL, TERM_YEARS REAL, ISSUE_DATE DATE, MATURITY_DATE DATE, ISSUE_AMT REAL,
  ISSUE_VOL REAL, CLEAN_PRICE REAL, YTM REAL, SECU_TYP_CODE INTEGER);
CREATE TABLE fund (SECU_ID INTEGER PRIMARY KEY, SECU_CODE TEXT, SECU_SHT TEXT, FUND_TYPE TEXT, MGR_COMPANY TEXT,
  MANAGER TEXT, FOUND_DATE DATE, NAV REAL, ACC_NAV REAL, RET_1M REAL, RET_6M REAL, RET_1Y REAL,
  FUND_SHARES REAL, FUND_SIZE REAL, MGMT_FEE REAL);
CREATE TABLE fund_nav (SECU_ID INTEGER, NAV_DATE DATE, NAV REAL, ACC_NAV REAL);
CREATE TABLE fund_company (NAME TEXT, VALUE TEXT);
CREATE TABLE wealth_product (PRD_CODE TEXT, PRD_NAME TEXT, ISSUER_BANK TEXT, RISK_LEVEL TEXT, EXPECT_YIELD REAL,
  TERM_DAYS INTEGER, MIN_AMT REAL, START_DATE DATE, END_DATE DATE, YEAR INTEGER, CURRENCY TEXT, RAISE_AMT REAL);
CREATE TABLE commodity_price (CMD_CODE TEXT, CMD_NAME TEXT, EXCHANGE TEXT, UNIT_NAME TEXT, TRADE_DATE DATE,
  PRICE REAL, CHG_PCT REAL, VOLUME REAL, OPEN_INT REAL, REMARK TEXT);
CREATE TABLE fx_rate (CCY_PAIR TEXT, CCY_NAME TEXT, TRADE_DATE DATE, MID_RATE REAL, CHG_BP REAL, HIGH_RATE REAL,
  LOW_RATE REAL);
CREATE TABLE fx_volume (END_DATE DATE, YM YEARMONTH, USD_SHARE REAL, EUR_SHARE REAL, JPY_SHARE REAL,
  HKD_SHARE REAL, OTHER_SHARE REAL);
CREATE TABLE global_macro (COUNTRY TEXT, REGION TEXT, YEAR INTEGER, GDP_GROWTH REAL, CPI REAL, UNEMPLOYMENT REAL,
  GDP_USD REAL);
CREATE TABLE otc_stock (SECU_ID INTEGER PRIMARY KEY, SECU_CODE TEXT, SECU_SHT TEXT, LAYER TEXT, TRANS_MODE TEXT,
  IND_NAME TEXT, PROVINCE TEXT, AREA TEXT, LIST_DATE DATE, CLOSE_PRICE REAL, TOTAL_SHARES REAL, REVENUE REAL,
  NET_PROFIT REAL, HOLDER_CNT REAL, SECU_TYP_CODE INTEGER);
CREATE TABLE otc_layer (NAME TEXT, VALUE TEXT);
CREATE TABLE bond_rating_stat (RATING TEXT, BOND_CNT INTEGER, ISSUE_AMT REAL);
CREATE TABLE hk_stock (SECU_ID INTEGER PRIMARY KEY, SECU_CODE TEXT, SECU_SHT TEXT, IND_NAME TEXT, CST_NUM TEXT,
  CLOSE_PRICE REAL, CHG_PCT REAL, VOLUME REAL, AMOUNT REAL, MKT_CAP REAL, PE REAL, DIV_YIELD REAL, LIST_DATE DATE);
)SQL";

const char *const kIndexes = R"SQL(
CREATE INDEX stock_code ON stock (SECU_CODE);
CREATE INDEX stock_ind ON stock (IND_NAME);
CREATE INDEX stock_chg ON stock (CHG_PCT);
CREATE INDEX finance_secu ON stock_finance (SECU_ID, END_DATE);
CREATE INDEX finance_date ON stock_finance (END_DATE);
CREATE INDEX daily_secu ON stock_daily (SECU_ID, TRADE_DATE);
CREATE INDEX holder_secu ON stock_holder (SECU_ID);
CREATE INDEX member_sect ON block_member (SECT_ID, SECU_ID);
CREATE INDEX fund_nav_secu ON fund_nav (SECU_ID, NAV_DATE);
CREATE INDEX bond_code ON bond (SECU_CODE);
CREATE INDEX fund_ret ON fund (RET_1Y);
)SQL";

} // namespace

DemoDataGenerator::DemoDataGenerator(int scale) : m_scale(qMax(1, scale)) {}

int DemoDataGenerator::version()
{
    return 4;
}

bool DemoDataGenerator::generate(const QString &path, QString *error)
{
    QElapsedTimer timer;
    timer.start();
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK) {
        *error = QStringLiteral("cannot create %1: %2").arg(path, QString::fromUtf8(sqlite3_errmsg(db)));
        sqlite3_close(db);
        return false;
    }
    Writer w(db);
    Random rnd(20241231);
    const int scale = m_scale;
    bool ok = w.exec("PRAGMA journal_mode=OFF") && w.exec("PRAGMA synchronous=OFF")
              && w.exec("PRAGMA page_size=8192")
              // Index building at scale 100 thrashes a small page cache.
              && w.exec("PRAGMA cache_size=-262144") && w.exec("PRAGMA temp_store=MEMORY") && w.exec("BEGIN") && w.exec(QString::fromUtf8(kSchema));

    // Industries, provinces and their lists.
    ok = ok && w.insert("industry", 4, [i = 0](QVariantList &r) mutable {
        if (i >= industries().size()) return false;
        const Industry &ind = industries().at(i++);
        r << ind.code << ind.name << ind.name << ind.name;
        return true;
    });
    ok = ok && w.insert("province", 3, [i = 0](QVariantList &r) mutable {
        if (i >= kProvinces.size()) return false;
        r << kProvinces.at(i) << kProvinces.at(i) << kRegionOfProvince.at(i);
        ++i;
        return true;
    });

    // A-shares with their latest quote, one row per security.
    struct StockFacts { qint64 id; QString code; QString name; int industry; double shares; double price; double revenue; double margin; };
    QList<StockFacts> stocks;
    const int stockCount = 2000 * scale;
    const QList<QDate> days = tradingDays(30);
    ok = ok && w.insert("stock", 28, [&, i = 0](QVariantList &r) mutable {
        if (i >= stockCount) return false;
        const int ind = rnd.below(industries().size());
        const Industry &industry = industries().at(ind);
        const bool shanghai = rnd.below(2) == 0;
        const QString code = QString::number((shanghai ? 600000 : (rnd.below(3) == 0 ? 300000 : 1)) + i)
                                 .rightJustified(6, QLatin1Char('0'));
        const QString name = kNameHeads.at(i % kNameHeads.size())
                             + kNameMiddles.at((i / kNameHeads.size()) % kNameMiddles.size())
                             + industry.suffixes.at((i / 400) % industry.suffixes.size());
        const double shares = std::round(std::exp(rnd.normal() * 0.9 + 20.5) / 1e4) * 1e4;
        const double price = round2(std::exp(rnd.normal() * 0.7 + 2.7));
        const double chg = round2(qBound(-10.0, rnd.normal() * 2.2, 10.0));
        const double prev = price / (1 + chg / 100.0);
        const double volume = std::round(shares * rnd.uniform(0.002, 0.04) / 100) * 100;
        const double floatShares = std::round(shares * rnd.uniform(0.4, 1.0) / 100) * 100;
        const double revenue = std::exp(rnd.normal() * 1.1 + 22.2);
        const double margin = industry.margin + rnd.normal() * 0.05;
        const double netProfit = revenue * margin;
        const double equity = revenue * rnd.uniform(0.6, 2.5);
        const double eps = round4(netProfit / shares);
        const double bvps = round4(equity / shares);
        const int province = rnd.below(kProvinces.size());
        const QDate listDate = QDate(1991, 1, 1).addDays(rnd.below(33 * 365));
        const qint64 id = 100000 + i;
        r << id << code << name << (200000 + i) << (name + QStringLiteral("股份有限公司"))
          << QStringLiteral("%1是一家注册于%2的%3行业公司，%4年上市，主营业务覆盖%3相关产品与服务，"
                            "近年营业收入约%5亿元。")
                 .arg(name, kProvinces.at(province), industry.name)
                 .arg(listDate.year())
                 .arg(revenue / 1e8, 0, 'f', 1)
          << (shanghai ? QStringLiteral("上交所") : QStringLiteral("深交所")) << industry.code << industry.name
          << kProvinces.at(province) << listDate << kLastDay << price << chg << round2(prev * rnd.uniform(0.98, 1.02))
          << round2(std::max(price, prev) * rnd.uniform(1.0, 1.03)) << round2(std::min(price, prev) * rnd.uniform(0.97, 1.0))
          << volume << std::round(volume * price) << round2(volume / floatShares * 100)
          << (eps > 0 ? round2(price / eps) : QVariant()) << round2(price / std::max(bvps, 0.01))
          << shares << floatShares << eps << bvps << round2(netProfit / equity * 100) << 10;
        stocks.append({id, code, name, ind, shares, price, revenue, margin});
        ++i;
        return true;
    });

    // Six years of quarterly statements, cumulative within the year as published.
    ok = ok && w.insert("stock_finance", 16, [&, s = 0, q = 0](QVariantList &r) mutable {
        if (s >= stocks.size()) return false;
        const StockFacts &f = stocks.at(s);
        const int year = 2019 + q / 4;
        const int quarter = q % 4 + 1;
        const double yearRevenue = f.revenue * std::pow(1.06, year - 2024) * (1 + rnd.normal() * 0.08);
        const double revenue = yearRevenue * quarter / 4.0;
        const double netProfit = revenue * (f.margin + rnd.normal() * 0.02);
        const double assets = yearRevenue * rnd.uniform(1.5, 4.0);
        const double liab = assets * rnd.uniform(0.25, 0.85);
        const double equity = assets - liab;
        r << f.id << f.code << f.name << industries().at(f.industry).name
          << QDate(year, quarter * 3, 1).addMonths(1).addDays(-1) << year << quarter
          << std::round(revenue) << std::round(netProfit) << std::round(assets) << std::round(liab)
          << std::round(equity) << round4(netProfit / f.shares) << round2(netProfit / equity * 100)
          << round2(rnd.uniform(8, 60)) << round2(liab / assets * 100);
        if (++q == 24) { q = 0; ++s; }
        return true;
    });

    ok = ok && w.insert("stock_daily", 8, [&, s = 0, d = 0, close = 0.0](QVariantList &r) mutable {
        if (s >= stocks.size()) return false;
        const StockFacts &f = stocks.at(s);
        if (d == 0)
            close = f.price * rnd.uniform(0.85, 1.15);
        const double open = close;
        close = (d == days.size() - 1) ? f.price : round2(close * (1 + rnd.normal() * 0.02));
        const double volume = std::round(f.shares * rnd.uniform(0.002, 0.03) / 100) * 100;
        r << f.id << days.at(d) << round2(open) << round2(std::max(open, close) * rnd.uniform(1.0, 1.02))
          << round2(std::min(open, close) * rnd.uniform(0.98, 1.0)) << close << volume << std::round(volume * close);
        if (++d == days.size()) { d = 0; ++s; }
        return true;
    });

    static const QStringList holderNames = {"中央汇金投资有限责任公司", "香港中央结算有限公司", "全国社保基金一一八组合",
                                            "中国证券金融股份有限公司", "基本养老保险基金八零二组合", "招商银行股份有限公司-上证50交易型开放式指数证券投资基金",
                                            "中国人寿保险股份有限公司-传统-普通保险产品", "易方达蓝筹精选混合型证券投资基金",
                                            "阿布达比投资局", "挪威中央银行"};
    static const QStringList holderTypes = {"国有法人", "境外法人", "基金、理财产品", "国有法人", "基金、理财产品",
                                            "基金、理财产品", "保险产品", "基金、理财产品", "QFII", "QFII"};
    ok = ok && w.insert("stock_holder", 7, [&, s = 0, k = 0, left = 0.0](QVariantList &r) mutable {
        if (s >= stocks.size()) return false;
        const StockFacts &f = stocks.at(s);
        if (k == 0) {
            left = rnd.uniform(30, 75);
            r << f.id << 1 << (f.name + QStringLiteral("集团有限公司")) << QStringLiteral("境内非国有法人");
        } else {
            const int h = (s + k * 3) % holderNames.size();
            r << f.id << (k + 1) << holderNames.at(h) << holderTypes.at(h);
        }
        const double pct = round2(k == 0 ? left * rnd.uniform(0.35, 0.6) : left * rnd.uniform(0.02, 0.12));
        left -= pct;
        r << std::round(f.shares * pct / 100) << pct << QDate(2024, 9, 30);
        if (++k == 10) { k = 0; ++s; }
        return true;
    });

    // Blocks: industries, regions and a few concepts, all of the stock type 10.
    static const QStringList concepts = {"人工智能", "新能源车", "半导体", "创新药", "数字经济", "央企改革"};
    struct Sect { int id; int parent; QString name; };
    QList<Sect> sects = {{1000, 0, "行业板块"}, {2000, 0, "地域板块"}, {3000, 0, "概念板块"}};
    for (int i = 0; i < industries().size(); ++i)
        sects.append({1001 + i, 1000, industries().at(i).name});
    for (int i = 0; i < kProvinces.size(); ++i)
        sects.append({2001 + i, 2000, kProvinces.at(i) + QStringLiteral("板块")});
    for (int i = 0; i < concepts.size(); ++i)
        sects.append({3001 + i, 3000, concepts.at(i)});
    ok = ok && w.insert("block", 4, [&, i = 0](QVariantList &r) mutable {
        if (i >= sects.size()) return false;
        r << sects.at(i).id << sects.at(i).parent << sects.at(i).name << 10;
        ++i;
        return true;
    });
    ok = ok && w.exec("INSERT INTO block_member SELECT 1000 + i.rowid, s.SECU_ID FROM stock s JOIN industry i ON i.IND_CODE = s.IND_CODE");
    ok = ok && w.exec("INSERT INTO block_member SELECT 2000 + p.rowid, s.SECU_ID FROM stock s JOIN province p ON p.NAME = s.PROVINCE");
    ok = ok && w.insert("block_member", 2, [&, s = 0, c = 0](QVariantList &r) mutable {
        for (;;) {
            if (s >= stocks.size()) return false;
            const int concept = c;
            const qint64 id = stocks.at(s).id;
            if (++c == concepts.size()) { c = 0; ++s; }
            if (rnd.below(100) < 8) {
                r << 3001 + concept << id;
                return true;
            }
        }
    });

    // Constants that the terminal caches: regions and index constituents.
    static const QList<QStringList> constants = {
        {"HD", "华东", "AREA", "地区", "CN"}, {"HB", "华北", "AREA", "地区", "CN"},
        {"HN", "华南", "AREA", "地区", "CN"}, {"HZ", "华中", "AREA", "地区", "CN"},
        {"XN", "西南", "AREA", "地区", "CN"}, {"HSI", "恒生指数", "CST_NUM", "成份指数", "HK"},
        {"HSCEI", "恒生中国企业指数", "CST_NUM", "成份指数", "HK"}, {"HSTECH", "恒生科技指数", "CST_NUM", "成份指数", "HK"},
        {"1", "元", "CURRENCY_UNIT", "金额单位", ""}, {"10000", "万元", "CURRENCY_UNIT", "金额单位", ""}};
    ok = ok && w.insert("constant", 5, [i = 0](QVariantList &r) mutable {
        if (i >= constants.size()) return false;
        for (const QString &v : constants.at(i)) r << v;
        ++i;
        return true;
    });

    // Macro-economy: ten years of monthly figures and quarterly GDP.
    ok = ok && w.insert("macro_monthly", 11, [&, m = 0, cpi = 1.4, ppi = -5.2, m2 = 13.3](QVariantList &r) mutable {
        if (m >= 120) return false;
        const QDate end = QDate(2015, 1, 1).addMonths(m + 1).addDays(-1);
        cpi = round2(qBound(-1.5, cpi + rnd.normal() * 0.35, 5.5));
        ppi = round2(qBound(-8.0, ppi + rnd.normal() * 0.7, 13.5));
        m2 = round2(qBound(7.5, m2 + rnd.normal() * 0.4, 14.0));
        const double retail = std::round(25000 * std::pow(1.06, m / 12.0) * (1 + 0.1 * std::sin(m * 0.52)) * 100) / 100;
        r << end << end.year() * 100 + end.month() << end.year() << end.month() << cpi << ppi << m2 << retail
          << round2(5.8 + rnd.normal() * 1.5) << round2(50 + rnd.normal() * 1.1)
          << std::round(1800 * std::pow(1.05, m / 12.0) * rnd.uniform(0.85, 1.15) * 100) / 100;
        ++m;
        return true;
    });
    ok = ok && w.insert("macro_gdp", 9, [&, q = 0](QVariantList &r) mutable {
        if (q >= 40) return false;
        const int year = 2015 + q / 4, quarter = q % 4 + 1;
        const double gdp = std::round(160000 * std::pow(1.07, q / 4.0) * (0.85 + 0.1 * quarter) * 100) / 100;
        const double primary = round2(gdp * rnd.uniform(0.05, 0.09));
        const double secondary = round2(gdp * rnd.uniform(0.36, 0.41));
        r << QDate(year, quarter * 3, 1).addMonths(1).addDays(-1) << year << quarter
          << QStringLiteral("%1Q%2").arg(year).arg(quarter) << gdp << primary << secondary
          << round2(gdp - primary - secondary) << round2(year == 2020 && quarter == 1 ? -6.8 : 6.0 + rnd.normal() * 0.8);
        ++q;
        return true;
    });

    // Bonds.
    static const QStringList bondTypes = {"国债", "地方政府债", "金融债", "企业债", "公司债", "中期票据", "城投债"};
    static const QStringList ratings = {"AAA", "AA+", "AA", "AA-", "A+"};
    ok = ok && w.insert("bond", 15, [&, i = 0](QVariantList &r) mutable {
        if (i >= 1500 * scale) return false;
        const int type = rnd.below(bondTypes.size());
        const QString issuer = type == 0 ? QStringLiteral("财政部")
                               : type == 1 ? kProvinces.at(i % kProvinces.size()) + QStringLiteral("省人民政府")
                                           : kNameHeads.at(i % kNameHeads.size()) + industries().at(i % industries().size()).suffixes.first()
                                                 + QStringLiteral("集团有限公司");
        const QString rating = type <= 1 ? QStringLiteral("AAA") : ratings.at(std::min(rnd.below(5), rnd.below(5)));
        const double term = QList<double>{1, 2, 3, 5, 7, 10, 15, 20, 30}.at(rnd.below(type <= 1 ? 9 : 6));
        const QDate issue = QDate(2016, 1, 1).addDays(rnd.below(9 * 365));
        const double coupon = round2(2.0 + term * 0.05 + (type >= 3 ? 1.2 : 0) + ratings.indexOf(rating) * 0.6 + rnd.normal() * 0.3);
        const double amount = std::round(rnd.uniform(5, 300)) * 1e8;
        const double ytm = round4(coupon * rnd.uniform(0.7, 1.1));
        r << (300000 + i) << QString::number((type == 0 ? 19 : 10) * 10000 + i % 10000 + (i / 10000) * 100000)
          << QStringLiteral("%1%2%3").arg(issue.toString("yy"), bondTypes.at(type)).arg(i % 97 + 1, 2, 10, QLatin1Char('0'))
          << bondTypes.at(type) << issuer << rating << coupon << term << issue
          << issue.addYears(int(term)) << amount << amount / 100 << round4(100 + (coupon - ytm) * term * 0.9) << ytm << 20;
        ++i;
        return true;
    });

    // Funds and their recent net asset values.
    static const QStringList fundTypes = {"股票型", "混合型", "债券型", "货币型", "指数型", "QDII"};
    static const QStringList fundCompanies = {"易方达基金", "华夏基金", "广发基金", "南方基金", "富国基金", "汇添富基金",
                                              "博时基金", "招商基金", "嘉实基金", "鹏华基金"};
    static const QStringList managers = {"张坤", "刘格菘", "葛兰", "谢治宇", "朱少醒", "周蔚文", "萧楠", "傅鹏博", "王宗合", "杨锐文"};
    ok = ok && w.insert("fund_company", 2, [i = 0](QVariantList &r) mutable {
        if (i >= fundCompanies.size()) return false;
        r << fundCompanies.at(i) << fundCompanies.at(i);
        ++i;
        return true;
    });
    struct FundFacts { qint64 id; double nav; double ret1m; };
    QList<FundFacts> funds;
    ok = ok && w.insert("fund", 15, [&, i = 0](QVariantList &r) mutable {
        if (i >= 1500 * scale) return false;
        const int type = rnd.below(fundTypes.size());
        const double vol = type == 3 ? 0.001 : type == 2 ? 0.03 : 0.18;
        const double nav = type == 3 ? 1.0 : round4(std::max(0.3, 1.0 + rnd.normal() * 0.5 + 0.3));
        const double ret1y = round2(type == 3 ? rnd.uniform(1.5, 2.4) : rnd.normal() * vol * 100);
        const double ret1m = round2(ret1y / 12 + rnd.normal() * vol * 20);
        const double shares = std::round(std::exp(rnd.normal() + 20.0));
        const QString company = fundCompanies.at(rnd.below(fundCompanies.size()));
        const qint64 id = 400000 + i;
        r << id << QString::number(i + 1).rightJustified(6, QLatin1Char('0'))
          << company.left(company.size() - 2) + QStringList{"成长", "价值", "优选", "稳健", "精选", "蓝筹"}.at(i % 6)
                 + fundTypes.at(type).left(2) + QStringList{"A", "C", ""}.at(i % 3)
          << fundTypes.at(type) << company << managers.at(rnd.below(managers.size()))
          << QDate(2005, 1, 1).addDays(rnd.below(19 * 365)) << nav << round4(nav + rnd.uniform(0, 1.5))
          << ret1m << round2(ret1y / 2 + rnd.normal() * 3) << ret1y << shares << std::round(shares * nav)
          << (type == 3 ? 0.25 : type == 2 ? 0.6 : 1.2);
        funds.append({id, nav, ret1m});
        ++i;
        return true;
    });
    ok = ok && w.insert("fund_nav", 4, [&, f = 0, d = 0, nav = 0.0](QVariantList &r) mutable {
        if (f >= funds.size()) return false;
        if (d == 0)
            nav = funds.at(f).nav / (1 + funds.at(f).ret1m / 100);
        nav = (d == days.size() - 1) ? funds.at(f).nav : round4(nav * (1 + rnd.normal() * 0.008));
        r << funds.at(f).id << days.at(d) << nav << round4(nav + 0.35);
        if (++d == days.size()) { d = 0; ++f; }
        return true;
    });

    // Bank wealth products.
    static const QStringList banks = {"工商银行", "建设银行", "招商银行", "兴业银行", "中信银行", "平安银行", "浦发银行", "交通银行"};
    ok = ok && w.insert("wealth_product", 12, [&, i = 0](QVariantList &r) mutable {
        if (i >= 1000 * scale) return false;
        const QString bank = banks.at(rnd.below(banks.size()));
        const int risk = 1 + std::min(rnd.below(5), rnd.below(5));
        const int term = QList<int>{7, 30, 90, 180, 365, 730}.at(rnd.below(6));
        const QDate start = QDate(2022, 1, 1).addDays(rnd.below(3 * 365));
        r << QStringLiteral("%1%2").arg(bank.left(1) == "工" ? "ICBC" : "WM").arg(i + 1, 7, 10, QLatin1Char('0'))
          << QStringLiteral("%1%2%3天%4号").arg(bank.left(2), QStringList{"稳利", "添利", "季季盈", "安心"}.at(i % 4)).arg(term).arg(i % 50 + 1)
          << bank << QStringLiteral("R%1").arg(risk) << round2(1.8 + risk * 0.45 + rnd.normal() * 0.3) << term
          << (risk >= 4 ? 100000.0 : 10000.0) << start << start.addDays(term) << start.year()
          << (rnd.below(10) == 0 ? QStringLiteral("美元") : QStringLiteral("人民币")) << std::round(rnd.uniform(0.5, 50)) * 1e8;
        ++i;
        return true;
    });

    // Commodities.
    struct Commodity { QString code, name, exchange, unit; double price; };
    static const QList<Commodity> commodities = {
        {"AU", "黄金", "上期所", "元/克", 620}, {"AG", "白银", "上期所", "元/千克", 7600}, {"CU", "铜", "上期所", "元/吨", 74000},
        {"AL", "铝", "上期所", "元/吨", 20000}, {"RB", "螺纹钢", "上期所", "元/吨", 3300}, {"I", "铁矿石", "大商所", "元/吨", 780},
        {"J", "焦炭", "大商所", "元/吨", 2000}, {"M", "豆粕", "大商所", "元/吨", 2700}, {"Y", "豆油", "大商所", "元/吨", 8000},
        {"CF", "棉花", "郑商所", "元/吨", 13500}, {"SR", "白糖", "郑商所", "元/吨", 5900}, {"TA", "PTA", "郑商所", "元/吨", 4700},
        {"SC", "原油", "上期能源", "元/桶", 540}, {"FG", "玻璃", "郑商所", "元/吨", 1300}};
    const QList<QDate> longDays = tradingDays(120);
    ok = ok && w.insert("commodity_price", 10, [&, c = 0, d = 0, price = 0.0](QVariantList &r) mutable {
        if (c >= commodities.size()) return false;
        const Commodity &cm = commodities.at(c);
        if (d == 0) price = cm.price;
        const double prev = price;
        price = round2(price * (1 + rnd.normal() * 0.012));
        r << cm.code << cm.name << cm.exchange << cm.unit << longDays.at(d) << price << round2((price / prev - 1) * 100)
          << std::round(rnd.uniform(5e4, 8e5)) << std::round(rnd.uniform(1e5, 1.2e6))
          << QStringLiteral("%1主力合约，交易所：%2，报价单位%3。").arg(cm.name, cm.exchange, cm.unit);
        if (++d == longDays.size()) { d = 0; ++c; }
        return true;
    });

    // Foreign exchange: central parity of the yuan.
    struct Pair { QString pair, name; double rate; };
    static const QList<Pair> pairs = {{"USD/CNY", "美元/人民币", 7.12}, {"EUR/CNY", "欧元/人民币", 7.65},
                                      {"JPY/CNY", "100日元/人民币", 4.72}, {"HKD/CNY", "港元/人民币", 0.912},
                                      {"GBP/CNY", "英镑/人民币", 9.05}, {"AUD/CNY", "澳元/人民币", 4.62},
                                      {"CNY/RUB", "人民币/卢布", 12.8}, {"CNY/KRW", "人民币/韩元", 189.5}};
    ok = ok && w.insert("fx_rate", 7, [&, p = 0, d = 0, rate = 0.0](QVariantList &r) mutable {
        if (p >= pairs.size()) return false;
        if (d == 0) rate = pairs.at(p).rate;
        const double prev = rate;
        rate = round4(rate * (1 + rnd.normal() * 0.0015));
        r << pairs.at(p).pair << pairs.at(p).name << longDays.at(d) << rate << std::round((rate - prev) * 10000)
          << round4(rate * rnd.uniform(1.0, 1.003)) << round4(rate * rnd.uniform(0.997, 1.0));
        if (++d == longDays.size()) { d = 0; ++p; }
        return true;
    });
    ok = ok && w.insert("fx_volume", 7, [&, m = 0](QVariantList &r) mutable {
        if (m >= 36) return false;
        const QDate end = QDate(2022, 1, 1).addMonths(m + 1).addDays(-1);
        const double usd = rnd.uniform(55, 65), eur = rnd.uniform(8, 14), jpy = rnd.uniform(3, 7), hkd = rnd.uniform(4, 9);
        r << end << end.year() * 100 + end.month() << round2(usd) << round2(eur) << round2(jpy) << round2(hkd)
          << round2(100 - round2(usd) - round2(eur) - round2(jpy) - round2(hkd));
        ++m;
        return true;
    });

    // Global macro: annual figures of major economies.
    struct Country { QString name, region; double growth, cpi, unemployment, gdp; };
    static const QList<Country> countries = {
        {"美国", "北美", 2.3, 2.5, 4.5, 210000}, {"中国", "亚洲", 6.5, 1.8, 5.1, 140000}, {"日本", "亚洲", 0.8, 0.6, 2.7, 50000},
        {"德国", "欧洲", 1.3, 1.8, 3.6, 39000}, {"英国", "欧洲", 1.6, 2.4, 4.3, 28000}, {"法国", "欧洲", 1.3, 1.6, 8.2, 27000},
        {"印度", "亚洲", 6.6, 5.0, 7.5, 27000}, {"意大利", "欧洲", 0.6, 1.4, 9.5, 20000}, {"巴西", "南美", 1.2, 5.0, 10.5, 18000},
        {"加拿大", "北美", 1.8, 2.1, 6.2, 17000}, {"韩国", "亚洲", 2.7, 1.7, 3.6, 16000}, {"俄罗斯", "欧洲", 1.2, 6.0, 5.0, 16000},
        {"澳大利亚", "大洋洲", 2.4, 2.2, 5.2, 14000}, {"墨西哥", "北美", 1.9, 4.2, 3.4, 12000}, {"印度尼西亚", "亚洲", 5.0, 3.5, 5.4, 10000},
        {"沙特阿拉伯", "中东", 2.0, 1.5, 6.0, 7500}, {"南非", "非洲", 1.0, 5.0, 28.0, 3800}, {"越南", "亚洲", 6.2, 3.2, 2.2, 3300}};
    ok = ok && w.insert("global_macro", 7, [&, c = 0, y = 0](QVariantList &r) mutable {
        if (c >= countries.size()) return false;
        const Country &k = countries.at(c);
        const int year = 2010 + y;
        const double shock = year == 2020 ? -6.0 : year == 2021 ? 3.5 : 0.0;
        r << k.name << k.region << year << round2(k.growth + shock + rnd.normal() * 0.8)
          << round2(k.cpi + (year == 2022 ? 4.0 : 0) + rnd.normal() * 0.6) << round2(std::max(1.0, k.unemployment + rnd.normal() * 0.6))
          << std::round(k.gdp * std::pow(1 + k.growth / 100 + 0.02, year - 2024));
        if (++y == 15) { y = 0; ++c; }
        return true;
    });

    // Over-the-counter equities.
    static const QStringList layers = {"基础层", "创新层"};
    ok = ok && w.insert("otc_layer", 2, [i = 0](QVariantList &r) mutable {
        if (i >= layers.size()) return false;
        r << layers.at(i) << layers.at(i);
        ++i;
        return true;
    });
    ok = ok && w.insert("otc_stock", 15, [&, i = 0](QVariantList &r) mutable {
        if (i >= 1500 * scale) return false;
        const Industry &ind = industries().at(rnd.below(industries().size()));
        const int province = rnd.below(kProvinces.size());
        const double shares = std::round(std::exp(rnd.normal() * 0.8 + 17.5) / 1000) * 1000;
        const double revenue = std::exp(rnd.normal() + 18.5);
        r << (500000 + i) << QString::number(830000 + i * 7 % 170000) << kNameHeads.at((i * 7) % kNameHeads.size())
                                                                             + kNameMiddles.at(i % kNameMiddles.size()) + ind.suffixes.last()
          << layers.at(rnd.below(4) == 0 ? 1 : 0) << (rnd.below(5) == 0 ? QStringLiteral("做市转让") : QStringLiteral("集合竞价"))
          << ind.name << kProvinces.at(province) << kRegionOfProvince.at(province)
          << QDate(2013, 1, 1).addDays(rnd.below(11 * 365)) << round2(std::exp(rnd.normal() * 0.8 + 1.2)) << shares
          << std::round(revenue) << std::round(revenue * (ind.margin + rnd.normal() * 0.08))
          << std::round(std::exp(rnd.normal() + 4.5)) << 50;
        ++i;
        return true;
    });

    // Hong Kong stocks.
    static const QStringList hkInd = {"资讯科技业", "金融业", "地产建筑业", "消费品制造业", "医疗保健业", "能源业", "公用事业", "电讯业"};
    static const QStringList hkHeads = {"腾讯", "友邦", "港交所", "汇丰", "中移动", "美团", "小米", "比亚迪", "长和", "新鸿基",
                                        "领展", "中电", "港灯", "银河", "金沙", "恒隆", "九龙仓", "太古", "国泰", "信和"};
    ok = ok && w.insert("hk_stock", 13, [&, i = 0](QVariantList &r) mutable {
        if (i >= 800 * scale) return false;
        const double price = round2(std::exp(rnd.normal() * 1.1 + 2.0));
        const double shares = std::exp(rnd.normal() + 21.5);
        const int idx = rnd.below(6);
        r << (700000 + i) << QString::number(i + 1).rightJustified(5, QLatin1Char('0'))
          << hkHeads.at(i % hkHeads.size()) + (i >= hkHeads.size() ? QString::number(i / hkHeads.size()) : QString())
          << hkInd.at(rnd.below(hkInd.size())) << (idx < 3 ? QStringList{"HSI", "HSCEI", "HSTECH"}.at(idx) : QString())
          << price << round2(qBound(-15.0, rnd.normal() * 2.5, 15.0)) << std::round(shares * rnd.uniform(0.001, 0.01))
          << std::round(shares * rnd.uniform(0.001, 0.01) * price) << std::round(shares * price)
          << round2(rnd.uniform(4, 40)) << round2(rnd.uniform(0, 8)) << QDate(1990, 1, 1).addDays(rnd.below(34 * 365));
        ++i;
        return true;
    });

    // Industry figures of the annual reports, for the cross view.
    ok = ok && w.exec("INSERT INTO industry_stat SELECT s.IND_CODE, f.IND_NAME, f.YEAR, SUM(f.REVENUE), SUM(f.NET_PROFIT), "
                      "ROUND(SUM(f.NET_PROFIT) * 100.0 / SUM(f.EQUITY), 2), COUNT(*) FROM stock_finance f "
                      "JOIN stock s ON s.SECU_ID = f.SECU_ID WHERE f.QUARTER = 4 GROUP BY s.IND_CODE, f.IND_NAME, f.YEAR");

    ok = ok && w.exec("INSERT INTO bond_rating_stat SELECT RATING, COUNT(*), SUM(ISSUE_AMT) FROM bond GROUP BY RATING ORDER BY RATING");

    ok = ok && w.exec(QString::fromUtf8(kIndexes))
         && w.exec(QStringLiteral("INSERT INTO demo_meta VALUES ('version', %1), ('scale', %2)").arg(version()).arg(scale))
         && w.exec("COMMIT") && w.exec("ANALYZE");
    if (!ok)
        *error = QStringLiteral("generating the demo data failed: %1").arg(w.error());
    sqlite3_close(db);
    if (ok)
        qDebug() << "demo data generated, scale" << scale << "in" << timer.elapsed() << "ms:" << path;
    return ok;
}

} // namespace SubjectService
