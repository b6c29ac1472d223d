#include "db/demo_data.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <array>
#include <cstdint>

#include "database/ado.h"
#include "database/engine.h"

namespace qivo::db {
namespace {

// A fixed generator of our own, so the demo is the same on every library and platform.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint32_t next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<std::uint32_t>(state_ >> 11);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint32_t>(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <class List>
    const auto& pick(const List& list) {
        return list[static_cast<std::size_t>(below(static_cast<int>(std::size(list))))];
    }
    QString digits(int count) {
        QString text;
        for (int i = 0; i < count; ++i) {
            text += QChar(u'0' + below(10));
        }
        return text;
    }

  private:
    std::uint64_t state_;
};

const std::array<const char16_t*, 24> kSurnames = {
    u"王", u"李", u"张", u"刘", u"陈", u"杨", u"黄", u"赵", u"吴", u"周", u"徐", u"孙",
    u"马", u"朱", u"胡", u"郭", u"何", u"林", u"罗", u"高", u"郑", u"梁", u"谢", u"宋"};
const std::array<const char16_t*, 30> kGiven = {
    u"伟", u"芳",   u"娜",   u"敏",   u"静", u"丽", u"强", u"磊",   u"军", u"洋",
    u"勇", u"艳",   u"杰",   u"娟",   u"涛", u"明", u"超", u"秀英", u"霞", u"平",
    u"刚", u"桂英", u"建国", u"建华", u"文", u"辉", u"玲", u"鑫",   u"宇", u"欣"};
const std::array<const char16_t*, 8> kCities = {u"浙江杭州", u"江苏南京", u"上海",     u"安徽合肥",
                                                u"福建福州", u"江西南昌", u"湖南长沙", u"广东广州"};
const std::array<const char16_t*, 8> kEmployers = {u"杭州电机厂", u"西湖区软件园", u"市第一医院",
                                                   u"建设银行",   u"个体经营",     u"市实验小学",
                                                   u"退休",       u"浙江大学"};
const std::array<const char16_t*, 5> kEducation = {u"小学", u"初中", u"高中", u"本科", u"研究生"};

// An estate and the shape of its buildings' addresses.
struct Estate {
    const char16_t* code;
    const char16_t* name;
    const char16_t* buildingWord;  // after 地址1
    bool units;                    // 地址2 is a unit number
};
const std::array<Estate, 4> kEstates = {{{u"CH01", u"翠湖花园", u"栋", true},
                                         {u"JG02", u"金桂苑", u"幢", false},
                                         {u"YG03", u"阳光城", u"号楼", true},
                                         {u"DF04", u"东方名邸", u"座", false}}};

constexpr int kFloors = 18;
constexpr int kRoomsPerFloor = 2;
constexpr int kUnits = 2;
constexpr int kRoomsPerRow = kFloors * kRoomsPerFloor;

class Writer {
  public:
    explicit Writer(QSqlDatabase db) : db_(std::move(db)), random_(20240305) {}

    void run(int registrations) {
        writeStaff();
        for (const Estate& estate : kEstates) {
            exec(QStringLiteral("insert into 设置管理处 (GYD_DH, GYD_Name) values (?, ?)"),
                 {QString::fromUtf16(estate.code), QString::fromUtf16(estate.name)});
        }
        int written = 0;
        writeRegistration(999999, u"业主", person(), false);  // its owner row is gone
        ++written;
        for (int owner = 0; written < registrations; ++owner) {
            written += writeHousehold(owner, registrations - written);
        }
    }

  private:
    struct Person {
        QString name;
        QString id;
        QString mobile;
    };

    QSqlQuery& prepared(const QString& sql) {
        auto found = queries_.find(sql);
        if (found == queries_.end()) {
            QSqlQuery query(db_);
            if (!query.prepare(sql)) {
                database::throwSqlError(query.lastError());
            }
            found = queries_.insert(sql, query);
        }
        return found.value();
    }

    QVariant exec(const QString& sql, const QVariantList& values) {
        QSqlQuery& query = prepared(sql);
        for (int i = 0; i < values.size(); ++i) {
            query.bindValue(i, values[i]);
        }
        if (!query.exec()) {
            database::throwSqlError(query.lastError());
        }
        return query.lastInsertId();
    }

    QString name() {
        return QString::fromUtf16(random_.pick(kSurnames)) +
               QString::fromUtf16(random_.pick(kGiven)) +
               (random_.chance(40) ? QString::fromUtf16(random_.pick(kGiven)) : QString());
    }

    QDate date(int fromYear, int years) {
        return QDate(fromYear, 1, 1).addDays(random_.below(years * 365));
    }

    // An 18-character identity number with its check character.
    QString identity(const QDate& birth) {
        QString id = QStringLiteral("3301") + random_.digits(2) + birth.toString("yyyyMMdd") +
                     random_.digits(3);
        static const int weights[] = {7, 9, 10, 5, 8, 4, 2, 1, 6, 3, 7, 9, 10, 5, 8, 4, 2};
        int sum = 0;
        for (int i = 0; i < 17; ++i) {
            sum += id[i].digitValue() * weights[i];
        }
        return id + QString(u"10X98765432"[sum % 11]);
    }

    Person person() {
        return {name(), identity(date(1950, 50)), QStringLiteral("13") + random_.digits(9)};
    }

    // The room of the n-th household. Each 楼表 row is a building, or one unit of it; rows are
    // filled one after another, the estates in turn.
    QVariant room(int household) {
        const int row = household / kRoomsPerRow;
        const int inRow = household % kRoomsPerRow;
        if (inRow == 0) {
            const Estate& estate = kEstates[static_cast<std::size_t>(row % 4)];
            const int nth = row / 4;
            const int building = estate.units ? nth / kUnits + 1 : nth + 1;
            buildingId_ = exec(
                QStringLiteral(
                    "insert into 楼表 (管理处, 地址1, 字1, 地址2, 字2) values (?, ?, ?, ?, ?)"),
                {QString::fromUtf16(estate.code), QString::number(building),
                 QString::fromUtf16(estate.buildingWord),
                 estate.units ? QVariant(QString::number(nth % kUnits + 1)) : QVariant(),
                 estate.units ? QVariant(QStringLiteral("单元")) : QVariant()});
        }
        QString number =
            QString::number((inRow / kRoomsPerFloor + 1) * 100 + inRow % kRoomsPerFloor + 1);
        // The first building also holds a "99" beside its "101" and "1001", to show the natural
        // order of short and long room numbers.
        if (row == 0 && inRow == 1) {
            number = QStringLiteral("99");
        }
        return exec(QStringLiteral("insert into 室表 (L_ID, 室, 字) values (?, ?, ?)"),
                    {buildingId_, number,
                     random_.chance(80) ? QVariant(QStringLiteral("室")) : QVariant()});
    }

    int writeHousehold(int household, int left) {
        const Person owner = person();
        const QDate bought = date(2012, 12);
        const int state = random_.below(20);
        const QVariant remark = state < 17    ? QVariant(QStringLiteral("新进户"))
                                : state == 17 ? QVariant(QStringLiteral("已迁出"))
                                : state == 18 ? QVariant(QString(""))
                                              : QVariant();
        const QVariant ownerId = exec(
            QStringLiteral(
                "insert into 业主表 (S_ID, 姓名, 固定电话, 移动电话, 身份证, 购房日期, 交房日期, "
                "收楼日期, 进户日期, 开始收费日期, 工作单位, 户籍所在地, 备注, 短信, 说明) "
                "values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            {room(household), owner.name,
             random_.chance(50) ? QVariant(QStringLiteral("0571-") + random_.digits(8))
                                : QVariant(),
             owner.mobile, owner.id, bought.toString(Qt::ISODate),
             bought.addDays(200).toString(Qt::ISODate), bought.addDays(210).toString(Qt::ISODate),
             bought.addDays(260).toString(Qt::ISODate), bought.addDays(230).toString(Qt::ISODate),
             QString::fromUtf16(random_.pick(kEmployers)),
             QString::fromUtf16(random_.pick(kCities)),
             random_.chance(15) ? QVariant(QStringLiteral("车位 B") + random_.digits(3))
                                : QVariant(),
             random_.below(2), remark});
        std::vector<Person> members;
        const int memberCount = random_.below(4);
        for (int i = 0; i < memberCount; ++i) {
            members.push_back(person());
            writeMember(ownerId, members.back(), i == 0 ? u"配偶" : u"子女");
        }
        // The owner's registration, sometimes with a detail that differs from the register.
        Person registered = owner;
        if (random_.chance(10)) {
            registered.mobile = QStringLiteral("13") + random_.digits(9);
        }
        writeRegistration(ownerId, u"业主", registered, random_.chance(70));
        int written = 1;
        for (const Person& member : members) {
            if (written < left && random_.chance(50)) {
                writeRegistration(ownerId, random_.chance(80) ? u"家属" : u"租户", member,
                                  random_.chance(60));
                ++written;
            }
        }
        return written;
    }

    void writeMember(const QVariant& ownerId, const Person& member, const char16_t* relation) {
        exec(QStringLiteral(
                 "insert into ZHZL (ZH_ID, ZL_xm, ZL_gx, ZL_xb, ZL_csrq, ZL_csd, ZL_jg, ZL_whcd, "
                 "ZL_hy, ZL_yddh, ZL_sfz, ZL_fwcs, ZL_mz) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                 "?, ?)"),
             {ownerId, member.name, QString::fromUtf16(relation),
              random_.chance(50) ? QStringLiteral("男") : QStringLiteral("女"),
              member.id.mid(6, 4) + "-" + member.id.mid(10, 2) + "-" + member.id.mid(12, 2),
              QString::fromUtf16(random_.pick(kCities)), QString::fromUtf16(random_.pick(kCities)),
              QString::fromUtf16(random_.pick(kEducation)),
              random_.chance(60) ? QStringLiteral("已婚") : QStringLiteral("未婚"), member.mobile,
              member.id, QString::fromUtf16(random_.pick(kEmployers)), QStringLiteral("汉")});
    }

    void writeRegistration(const QVariant& ownerId, const char16_t* kind, const Person& who,
                           bool approved) {
        static const QStringList reviewers = {"王丽", "李强"};
        exec(QStringLiteral("insert into 业户互联网 (ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性, "
                            "审核人, 审核日期) "
                            "values (?, ?, ?, ?, ?, ?, ?, ?)"),
             {ownerId, QStringLiteral("qv") + random_.digits(8), who.name, who.id, who.mobile,
              QString::fromUtf16(kind),
              approved ? QVariant(reviewers[random_.below(2)]) : QVariant(),
              approved ? QVariant(date(2023, 3).toString(Qt::ISODate)) : QVariant()});
    }

    void writeStaff() {
        const QStringList statements = {
            "insert into 职能部门类别 values ('WY', '物业管理')",
            "insert into 职能部门new values ('KF', '客服中心', 'WY'), ('GC', '工程部', 'WY')",
            "insert into 岗位类别 values ('GL', '管理岗'), ('ZY', '专业岗')",
            "insert into 岗位信息new values ('KF01', '客服主管', 'KF', 'GL'), ('KF02', '客服专员', "
            "'KF', 'ZY'),"
            " ('GC01', '维修主管', 'GC', 'GL')",
            "insert into 员工档案 (工号, 帐号密码, 姓名, 离职日期) values ('1001', '1001', '王丽', "
            "null),"
            " ('1002', '1002', '李强', null), ('1003', '1003', '赵敏', '2024-01-31'),"
            " ('1004', '1004', '孙杰', null)",
            "insert into 岗位员工new values ('1001', 'KF01', 1, null), ('1002', 'GC01', 1, null),"
            " ('1002', 'KF02', 0, null), ('1003', 'KF02', 1, null), ('1004', 'KF02', 1, "
            "'2024-05-01')",
        };
        QSqlQuery query(db_);
        for (const QString& statement : statements) {
            if (!query.exec(statement)) {
                database::throwSqlError(query.lastError());
            }
        }
    }

    QSqlDatabase db_;
    Random random_;
    QHash<QString, QSqlQuery> queries_;
    QVariant buildingId_;
};

}  // namespace

void writeDemoData(database::AdoConnection& connection, int registrations) {
    QSqlDatabase db = connection.database();
    db.transaction();
    try {
        Writer(db).run(registrations);
    } catch (...) {
        db.rollback();
        throw;
    }
    db.commit();
}

}  // namespace qivo::db
