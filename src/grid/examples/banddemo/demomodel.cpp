#include "demomodel.h"

#include <QColor>
#include <QLocale>
#include <QRandomGenerator>

DemoModel::DemoModel(int rows, QObject *parent)
    : QAbstractTableModel(parent)
{
    static const char *const names[] = {"平安银行", "万科Ａ", "国农科技", "世纪星源", "深振业Ａ",
                                        "全新好", "神州高铁", "中国宝安", "美丽生态", "深物业Ａ",
                                        "沙河股份", "深康佳Ａ", "中集集团", "深中华Ａ", "深天地Ａ"};
    static const char *const industries[] = {"银行", "房地产", "医药生物", "机械设备", "电子"};
    QRandomGenerator random(7);
    for (int i = 0; i < rows; ++i) {
        Row row;
        row.code = QStringLiteral("%1.SZ").arg(i + 1, 6, 10, QLatin1Char('0'));
        row.name = QString::fromUtf8(names[i % 15]);
        row.industry = QString::fromUtf8(industries[(i * 7 + i / 3) % 5]);
        row.close = 2 + random.bounded(4000) / 100.0;
        row.change = (random.bounded(2000) - 1000) / 1000.0;
        row.volume = random.bounded(5000000);
        row.amount = row.volume * row.close;
        row.pe = random.bounded(8000) / 100.0;
        row.pb = random.bounded(900) / 100.0;
        m_rows.append(row);
    }
}

int DemoModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int DemoModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DemoModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return QVariant();
    const Row &r = m_rows.at(index.row());
    const QLocale locale;
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case Code: return r.code;
        case Name: return r.name;
        case Industry: return r.industry;
        case Close: return locale.toString(r.close, 'f', 2);
        case Change: return locale.toString(r.change, 'f', 2);
        case ChangePct: return locale.toString(100 * r.change / r.close, 'f', 2) + QLatin1Char('%');
        case Volume: return locale.toString(r.volume, 'f', 0);
        case Amount: return locale.toString(r.amount / 10000, 'f', 2);
        case Pe: return locale.toString(r.pe, 'f', 2);
        case Pb: return locale.toString(r.pb, 'f', 2);
        case Report: return QStringLiteral("<a href='view:report?code=%1'>年报</a>").arg(r.code);
        case Memo: return QStringLiteral("公司简介");
        }
    }
    if (role == Qt::TextAlignmentRole) {
        if (index.column() >= Close && index.column() <= Pb)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (role == Qt::ForegroundRole && (index.column() == Change || index.column() == ChangePct))
        return r.change >= 0 ? QColor(0xe0, 0x2f, 0x2f) : QColor(0x1a, 0xa2, 0x60);
    if (role == Qt::UserRole) { // the sort value: numbers as numbers
        switch (index.column()) {
        case Close: return r.close;
        case Change: return r.change;
        case ChangePct: return r.change / r.close;
        case Volume: return r.volume;
        case Amount: return r.amount;
        case Pe: return r.pe;
        case Pb: return r.pb;
        default: return data(index, Qt::DisplayRole);
        }
    }
    return QVariant();
}

QVariant DemoModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char *const captions[] = {"代码", "名称", "行业", "收盘价", "涨跌", "涨跌幅",
                                           "成交量(股)", "成交额(万元)", "市盈率", "市净率",
                                           "公告", "简介"};
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0
        && section < ColumnCount)
        return QString::fromUtf8(captions[section]);
    return QAbstractTableModel::headerData(section, orientation, role);
}
