#include "soakProject.h"

#include <QStringList>

namespace {

QString s_strScratch;

constexpr int AtTaskEnd = 999999999;
constexpr int DiskNum = 6;
constexpr int CrowdedDisk = 5;  ///< Its colour pictures come faster than they go: there a writer waits each time.

/// Pictures of a task: where they lie in its store, and of which kind they are.
struct Record
{
    bool m_bColour = true;
    int m_nID = 1;

    QString type() const { return m_bColour ? QStringLiteral("RGB") : QStringLiteral("Gray8"); }
};

QString element(const char* name, const QString& body)
{
    return QStringLiteral("<-%1->%2</-%1->\n").arg(QLatin1String(name), body);
}

QString stepText(const QString& id, const QString& name, const QString& option, int count = -1)
{
    return element("TaskItem", element("MaxExeTimes", QString::number(count)) + element("ArithmID", id) +
                                   element("OptionStr", option) + element("ClassName", QStringLiteral("类")) +
                                   element("ArithmName", name) + element("Describe", QString()));
}

QString probe(const QString& role, int disk, const Record& record, const QString& result = {}, int count = -1)
{
    const QString option = QStringLiteral("%1;%2;%3;%4;%5")
                               .arg(role, QString::number(disk), record.type(), QString::number(record.m_nID), result);
    return stepText(QStringLiteral("Soak.Probe"), role, option, count);
}

QString source(const QString& kind, const QString& config, const Record& record)
{
    return element("DataSource",
                   QStringLiteral("<DSName>%1</DSName><OutputName>p</OutputName><OutputDescribe>d</OutputDescribe>"
                                  "<OutputType>%2</OutputType><OutputID>%3</OutputID><Config>%4</Config>")
                       .arg(kind, record.type(), QString::number(record.m_nID), config));
}

QString camera(const QString& config, const Record& record)
{
    return source(QStringLiteral("Soak Source"), config, record);
}

QString diskSource(int disk, const Record& record)
{
    return source(QStringLiteral("Memory Disk %1").arg(disk), QString(), record);
}

/// The three steps that hand a picture on, and what sees at the end of the task whether they did.
QString handOn(int disk, const Record& record)
{
    const QString option = QStringLiteral("<MemDisk>%1</MemDisk><InputID>%2</InputID><InputType>%3</InputType>")
                               .arg(disk)
                               .arg(record.m_nID)
                               .arg(record.type());
    return probe(QStringLiteral("stamp"), disk, record) +
           stepText(QStringLiteral("KW_MemoryDisk"), QStringLiteral("写内存盘"), option) +
           probe(QStringLiteral("put"), disk, record) +
           probe(QStringLiteral("ended"), disk, record, QString(), AtTaskEnd);
}

/// The two steps that see every picture taken off a disk.
QString takeOff(int disk, const Record& record)
{
    return probe(QStringLiteral("taken"), disk, record) +
           probe(QStringLiteral("last"), disk, record, QString(), AtTaskEnd);
}

QString drawing(const Record& record, SoakChance& chance)
{
    const QString option = QStringLiteral(
                               "<DataType>%1</DataType><DataID>%2</DataID><Config><Scale>%3</Scale>"
                               "<Pos>%4</Pos></Config>")
                               .arg(record.m_bColour ? 0 : 1)
                               .arg(record.m_nID)
                               .arg(chance.below(3))
                               .arg(chance.below(9));
    return stepText(QStringLiteral("KW_Drawing"), QStringLiteral("绘制对象"), option);
}

/// Where a saving step takes its picture from: a view's pane below 4, else the record.
QString saving(int pane, const Record& record, const QString& name, SoakChance& chance, int count)
{
    const QString option =
        QStringLiteral(
            "<BasePath>%1</BasePath><StringID>%2</StringID><IsStringID>0</IsStringID>"
            "<Identity>2</Identity><Format>%3</Format><Exg>0</Exg><Wnd>%4</Wnd>"
            "<PicType>%5</PicType><PicID>%6</PicID>")
            .arg(s_strScratch, name, QString::number(chance.below(3)), QString::number(pane),
                 record.m_bColour ? QStringLiteral("RGB") : QStringLiteral("Gray"), QString::number(record.m_nID));
    return stepText(QStringLiteral("KW_Saving"), QStringLiteral("保存图像"), option, count);
}

QString wait(int ms)
{
    return QStringLiteral("wait=%1;").arg(ms);
}

QString failing(const Record& record, SoakChance& chance)
{
    const QStringList results{QStringLiteral("out of order"), QStringLiteral("<CMD>stop:done</CMD>"),
                              QStringLiteral("<CMD>print:a</CMD>oops"), QStringLiteral("fail")};
    // Good passes first: the check skips the failing step for as long as it has a turn.
    return probe(QStringLiteral("check"), 0, record, QStringLiteral("<CMD>skip:2</CMD>"), 20 + chance.below(200)) +
           probe(QStringLiteral("result"), 0, record, results.at(chance.below(results.size())));
}

QString printing(const Record& record)
{
    return probe(QStringLiteral("check"), 0, record) +
           probe(QStringLiteral("result"), 0, record, QStringLiteral("<CMD>print:a picture came</CMD>"));
}

QString slow(int ms)
{
    return stepText(QStringLiteral("Test.Slow"), QStringLiteral("Slow"), QString::number(ms));
}

QString otherPlugins(SoakChance& chance)
{
    return slow(chance.below(40)) +
           stepText(QStringLiteral("Test.Trace"), QStringLiteral("Trace"), QStringLiteral("x"), 5);
}

QString shapes()
{
    return stepText(QStringLiteral("KW_Drawing"), QStringLiteral("绘制对象"),
                    QStringLiteral("<DataType>7</DataType><DataID>900</DataID><Config><Color>-65536</Color>"
                                   "<Pos>20,20</Pos><FontSize>14</FontSize></Config>"));
}

const char* const ManySizes = "sizes=160x120,64x8,320x240,33x41,250x1,400x300;";

QString bodyOf(int kind, const QString& name, SoakChance& chance)
{
    const Record record{!chance.oneIn(3), 1 + chance.below(3)};
    const Record crowded;
    const int disk = chance.below(DiskNum);
    const QString pace = wait(2 + chance.below(30));
    const QString check = probe(QStringLiteral("check"), 0, record);
    switch (kind) {
    case 0:  // steady writer
        return camera(pace, record) + check + handOn(disk, record);
    case 1:  // writer of changing sizes that draws what it wrote
        return camera(pace + ManySizes, record) + check + handOn(disk, record) + drawing(record, chance);
    case 2:  // reader
        return diskSource(disk, record) + takeOff(disk, record) + drawing(record, chance);
    case 3: {  // takes from one disk and puts onto a higher one
        const int from = chance.below(DiskNum - 1);
        const int to = from + 1 + chance.below(DiskNum - 1 - from);
        return diskSource(from, record) + takeOff(from, record) + handOn(to, record);
    }
    case 4:  // slow
        return camera(wait(150 + chance.below(150)), record) + check + drawing(record, chance) + shapes();
    case 5:  // no picture, or no picture that can be
        return camera(wait(20) + QStringLiteral("null=3;bad=4;"), record) + check + handOn(disk, record);
    case 6:  // never a picture
        return camera(wait(20) + QStringLiteral("null=1;"), record) + check;
    case 7:  // saves its pictures
        return camera(wait(20 + chance.below(60)) + ManySizes, record) + check + saving(4, record, name, chance, -1);
    case 8:  // saves a view, at last once more
        return camera(wait(50), record) + drawing(record, chance) + saving(chance.below(4), record, name, chance, 5) +
               saving(chance.below(4), record, name + QStringLiteral("end"), chance, AtTaskEnd);
    case 9:  // ends by itself
        return camera(pace, record) + failing(record, chance);
    case 10:  // prints, and runs the other libraries
        return camera(pace, record) + printing(record) + otherPlugins(chance);
    case 11:  // puts onto the crowded disk
        return camera(wait(1 + chance.below(5)), crowded) + probe(QStringLiteral("check"), 0, crowded) +
               handOn(CrowdedDisk, crowded);
    case 12:  // takes from it, slowly
        return diskSource(CrowdedDisk, crowded) + takeOff(CrowdedDisk, crowded) + slow(30 + chance.below(50));
    default:  // reads, and saves what it read
        return diskSource(disk, record) + takeOff(disk, record) + saving(4, record, name, chance, 40) +
               otherPlugins(chance);
    }
}

}  // namespace

void SoakProject::setScratchFolder(const QString& folder)
{
    s_strScratch = folder;
}

QString SoakProject::taskText(const QString& name, int kind, SoakChance& chance)
{
    return element("TaskName", name) + element("Kernel", QString::number(chance.below(4))) +
           element("View", QString::number(chance.below(4))) + bodyOf(kind, name, chance);
}

QByteArray SoakProject::projectText(int tasks, SoakChance& chance)
{
    QString text;
    for (int i = 0; i < tasks; ++i) {
        text += QStringLiteral("<=TaskInfo=>\n");
        text += taskText(QStringLiteral("task%1").arg(i), i % KindNum, chance);
        text += QStringLiteral("\n</=TaskInfo=>\n");
    }
    // One without a source: it reports at every start.
    text += QStringLiteral("<=TaskInfo=>\n<-TaskName->none</-TaskName->\n</=TaskInfo=>\n");
    return text.toUtf8();
}
