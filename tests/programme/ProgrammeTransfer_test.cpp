#include "ProgrammeTestSupport.h"
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/ProgrammeDownload.h"
#include "programme/ProgrammeStore.h"
#include "programme/ProgrammeUpload.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <map>
#include <optional>
#include <vector>

namespace qv {
namespace {

using Fin = ProgrammeLu::Fin;

const QString kQuestion = QStringLiteral("Old values will be overwritten");
const QString kValveName = QStringLiteral("Bistable valve");

// Stands between the link and the simulated controller and can make the
// device go dead after a given number of exchanges: from then on no handle
// opens, as with a controller pulled off the cable. Counts every attempt.
class GateBus : public Bus {
public:
    explicit GateBus(Bus& inner) : inner_(inner) {}

    int deviceCount() override { return inner_.deviceCount(); }
    std::int32_t uniqueId(int index) override { return inner_.uniqueId(index); }
    std::unique_ptr<BusHandle> open(std::int32_t id) override {
        ++opens_;
        if (deadFromOpen_ && opens_ > *deadFromOpen_)
            return nullptr;
        return inner_.open(id);
    }

    // Each attempt of an exchange opens two handles.
    int attempts() const { return opens_ / 2; }
    void dieAfter(int exchanges) { deadFromOpen_ = opens_ + 2 * exchanges; }
    void revive() { deadFromOpen_.reset(); }

private:
    Bus& inner_;
    int opens_ = 0;
    std::optional<int> deadFromOpen_;
};

QByteArray contents(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

// A frame as the test spells it: the named leading bytes, zeros up to the
// 14 bytes in front of the check value.
std::vector<int> frame(std::initializer_list<int> leading) {
    std::vector<int> bytes(leading);
    bytes.resize(14, 0);
    return bytes;
}

Condition line(std::int16_t jour, std::int16_t format, double valeur, std::int16_t temporisation) {
    Condition c;
    c.sortie = 3;
    c.Format = format;
    c.Valeur = valeur;
    c.Temporisation = temporisation;
    c.Jour = jour;
    return c;
}

// One line of each kind: no time, a week day, a range, a periodic line.
Conditions oneOfEachKind() {
    Conditions conditions;
    Condition noTime = line(0, 0, 7, 300);
    noTime.Nom = QStringLiteral("Bistable valve-0");
    noTime.Commentaire = QStringLiteral("stays on the PC");
    noTime.setNumero(0, 0);
    noTime.setOperateur(0, 4);
    noTime.setValeur1(0, 12.0);
    noTime.Offset = 2.5;
    conditions.Add(noTime);

    Condition weekDay = line(2, 1, 1, 10);
    weekDay.Heure = 8;
    weekDay.Minute = 15;
    weekDay.Seconde = 30;
    conditions.Add(weekDay);

    Condition range = line(JourPlage, 0, 12, 60);
    range.Heure = 6;
    range.PlageFinJour = JourPlage;
    range.PlageFinHeure = 18;
    range.PlageFinMinute = 30;
    conditions.Add(range);

    Condition periodic = line(JourPeriode, 0, 0, 258);
    periodic.Heure = 7;
    periodic.Minute = 45;
    periodic.Seconde = 3;         // every 3 days
    periodic.PlageFinHeure = 4;   // first run in April
    periodic.PlageFinMinute = 15; // on the 15th
    conditions.Add(periodic);
    return conditions;
}

class ProgrammeTransfer : public ::testing::Test {
protected:
    SimulatedBus bus;
    GateBus gate{bus};
    test::RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{gate, dialogs, state};
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
    std::int32_t id = 0;
    QTemporaryDir dir;
    std::map<int, double> outputFormats; // ListeSorties: position -> item data

    const QDate madate{2024, 3, 7}; // a Thursday
    const QDateTime now{QDate(2024, 3, 5), QTime(14, 3, 5)};

    void SetUp() override {
        link.setPause([](int) {});
        bus.setSleep([](int) {});
        id = bus.addDevice(SimDeviceConfig{});
        state.UsbID = id;
        ASSERT_TRUE(dir.isValid());
        QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath());
        QFile::setPermissions(configPath(), QFile::ReadOwner | QFile::WriteOwner);
    }

    QString configPath() const { return dir.filePath(QStringLiteral("config.xml")); }

    // A fresh start for the next case of a table: the device answers again
    // and nothing of the last case is left in the flags, boxes and trace.
    void revive() {
        gate.revive();
        state.TimeOut = false;
        state.CRCError = false;
        dialogs.clear();
        bus.clearTrace();
    }

    EnvoiResultat download(const Conditions& conditions, std::int16_t etatDefaut = 1) {
        return Envoi_Conditions(device, conditions, etatDefaut, kQuestion, madate, now);
    }

    MessageLookup message() const {
        return [](const QString& key) {
            return key == QStringLiteral("Electro Vanne Bist.") ? kValveName : QStringLiteral("?");
        };
    }
    OutputFormatLookup formats() const {
        return [this](int position) -> std::optional<double> {
            const auto found = outputFormats.find(position);
            if (found == outputFormats.end())
                return std::nullopt;
            return found->second;
        };
    }
    ProgrammeLu upload() { return LitProgramme(device, message(), formats()); }

    // The frames the controller received, without their check value.
    std::vector<std::vector<int>> frames() const {
        std::vector<std::vector<int>> sent;
        for (const QString& traced : bus.traceLines()) {
            const int arrow = traced.indexOf(QStringLiteral(" > "));
            if (arrow < 0)
                continue;
            const QByteArray bytes = QByteArray::fromHex(traced.mid(arrow + 3).toLatin1());
            std::vector<int> values;
            for (int i = 0; i < 14 && i < bytes.size(); ++i)
                values.push_back(static_cast<unsigned char>(bytes[i]));
            sent.push_back(values);
        }
        return sent;
    }

    std::vector<int> image(int from, int to) const {
        std::vector<int> bytes;
        const auto sim = bus.device(id);
        for (int a = from; a < to; ++a)
            bytes.push_back(sim->eeprom(a));
        return bytes;
    }

    void writeImage(const std::vector<int>& bytes, int from = 48) {
        bus.modify(id, [&](SimDevice& d) {
            for (size_t i = 0; i < bytes.size(); ++i)
                d.setEeprom(from + static_cast<int>(i), bytes[i]);
        });
    }

    // The one line of a hand-made image, or a failure.
    Condition single(const std::vector<int>& bytes) {
        writeImage(bytes);
        ProgrammeLu read = upload();
        EXPECT_EQ(read.fin, Fin::MarqueDeFin);
        if (!read.conditions || read.conditions->Count() != 1) {
            ADD_FAILURE() << "expected one line";
            return {};
        }
        return *read.conditions->Item(1);
    }
};

// A plain header: valve 3, no terms, word value 1, delay 300.
std::vector<int> header(int terms = 0, int flags = 0) {
    return {3, terms, flags, 1, 0, 0, 0, 0, 0, 0, 0, 44, 1};
}

std::vector<int> operator+(std::vector<int> a, const std::vector<int>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const std::vector<int> kEnd = {255};

// ---------------------------------------------------------------- download

TEST_F(ProgrammeTransfer, OneLineOfEachKindGoesAsTheFramesAndImageOfTheProtocol) {
    const EnvoiResultat result = download(oneOfEachKind(), 1);
    EXPECT_TRUE(result.resultat);
    EXPECT_FALSE(result.cancelled);

    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, kQuestion);
    EXPECT_EQ(dialogs.boxes()[0].title, QString());
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::OkCancel);

    const std::vector<std::vector<int>> expected = {
        frame({0x01, 4, 14, 3, 5, 5, 3, 24, 255}), // clock: a programme follows
        frame({0x02, 0, 1}),
        // Jour 0: one frame; delay 300 high byte first
        frame({0x03, 3, 0, 7, 0, 0, 0, 0, 1, 44, 0}),
        // Format not 0: no value
        frame({0x03, 3, 1, 0, 0, 0, 0, 0, 0, 10, 2}),
        frame({0x1F, 9, 2, 8, 15, 30}),
        // range: start, then end
        frame({0x03, 3, 2, 12, 0, 0, 0, 0, 0, 60, 11}),
        frame({0x1F, 9, 11, 6, 0, 0}),
        frame({0x1F, 10, 11, 18, 30, 0}),
        // periodic: day of month before month, no sub-command 9
        frame({0x03, 3, 3, 0, 0, 0, 0, 0, 1, 2, 12}),
        frame({0x1F, 11, 15, 4, 7, 45, 3}),
    };
    EXPECT_EQ(frames(), expected);

    EXPECT_EQ(bus.device(id)->eeprom(24), 1);
    const std::vector<int> laidOut = {
        // line 1 at 48: no terms, no range; delay low byte first
        3, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 44, 1,
        // line 2 at 61: one day term
        3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 9, 0, 2, 8, 15, 30, 0, 0, 0, 0,
        // line 3 at 84: range flag, start and end entries
        3, 0, 1, 12, 0, 0, 0, 0, 0, 0, 0, 60, 0, 9, 1, 6, 0, 0, 0, 0, 0, 0, 9, 0, 18, 30, 0, 0, 0,
        0, 0,
        // line 4 at 115: one periodic term
        3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 1, 11, 0, 15, 4, 7, 45, 3, 0, 0, 0,
        // end mark at 138
        255};
    EXPECT_EQ(image(48, 139), laidOut);
}

TEST_F(ProgrammeTransfer, ValueGoesAsItsLowByteOnlyWhenTheFormatIs0) {
    struct Case {
        std::int16_t format;
        double valeur;
        int byte3;
    };
    for (const Case& c :
         {Case{0, 1, 1}, Case{0, 300, 44}, Case{0, 2.5, 2}, Case{5, 255, 0}, Case{-1, 1, 0}}) {
        SCOPED_TRACE(testing::Message() << "Format " << c.format << " Valeur " << c.valeur);
        EXPECT_EQ(conditionFrame(line(0, c.format, c.valeur, 0), 1),
                  (Bytes{3, 3, 0, c.byte3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST_F(ProgrammeTransfer, CancelSendsNothing) {
    dialogs.answerNext(MsgBox::AnswerCancel);
    const EnvoiResultat result = download(oneOfEachKind());
    EXPECT_FALSE(result.resultat);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(gate.attempts(), 0);
    EXPECT_TRUE(bus.traceLines().isEmpty());
}

TEST_F(ProgrammeTransfer, EmptyProgrammeStillAsksSetsTheClockAndBeginsAnImage) {
    writeImage(header() + kEnd);
    const EnvoiResultat result = download(Conditions{}, 0);
    EXPECT_TRUE(result.resultat);
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    const std::vector<std::vector<int>> expected = {frame({0x01, 4, 14, 3, 5, 5, 3, 24, 255}),
                                                    frame({0x02, 0, 0})};
    EXPECT_EQ(frames(), expected);
    EXPECT_EQ(bus.device(id)->eeprom(48), 255);
}

// The device goes dead after a number of answered exchanges; the download
// stops on the first unanswered frame and sends nothing after it.
TEST_F(ProgrammeTransfer, DeadDeviceStopsTheDownloadAtTheFirstFailure) {
    for (int answered : {0, 1, 2, 3, 4, 8}) {
        SCOPED_TRACE(testing::Message() << answered << " frames answered");
        revive();
        const int before = gate.attempts();
        gate.dieAfter(answered);

        const EnvoiResultat result = download(oneOfEachKind());
        EXPECT_FALSE(result.resultat);
        EXPECT_FALSE(result.cancelled);
        EXPECT_TRUE(state.TimeOut);
        // The answered frames, then three attempts at the failing one.
        EXPECT_EQ(gate.attempts() - before, answered + FrameLink::kAttempts);
        EXPECT_EQ(frames().size(), static_cast<size_t>(answered));
        ASSERT_EQ(dialogs.boxes().size(), 2u);
        EXPECT_EQ(dialogs.boxes()[1].text, QStringLiteral("Quorvel Absent (Time Out)"));
    }
}

TEST_F(ProgrammeTransfer, TimeOutLeftFromBeforeStopsAfterTheQuestion) {
    state.TimeOut = true;
    EXPECT_FALSE(download(oneOfEachKind()).resultat);
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(gate.attempts(), 0);
}

// A field that does not fit its byte aborts the download when its frame is
// built: what went before has gone, the bad frame and the rest do not.
TEST_F(ProgrammeTransfer, FieldOutOfByteRangeThrowsAndSendsNothingFurther) {
    struct Case {
        const char* what;
        void (*spoil)(Condition&);
        size_t framesSent; // clock, begin, line 1, then what line 2 got out
    };
    const Case cases[] = {
        {"sortie 256", [](Condition& c) { c.sortie = 256; }, 3},
        {"Jour -1", [](Condition& c) { c.Jour = -1; }, 3},
        {"Heure 300", [](Condition& c) { c.Heure = 300; }, 4},
        {"PlageFinHeure 256",
         [](Condition& c) {
             c.Jour = JourPlage;
             c.PlageFinHeure = 256;
         },
         5},
        {"period 256",
         [](Condition& c) {
             c.Jour = JourPeriode;
             c.Seconde = 256;
         },
         4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        revive();
        const int before = gate.attempts();
        Conditions conditions;
        conditions.Add(line(0, 0, 1, 5));
        Condition bad = line(2, 0, 1, 5);
        c.spoil(bad);
        conditions.Add(bad);
        conditions.Add(line(0, 0, 1, 5));
        EXPECT_THROW(download(conditions), OverflowError);
        EXPECT_EQ(frames().size(), c.framesSent);
        // Caught before the link opened anything for the bad frame.
        EXPECT_EQ(gate.attempts() - before, static_cast<int>(c.framesSent));
    }
}

// ---------------------------------------------------------------- round trip

TEST_F(ProgrammeTransfer, UploadGivesBackWhatTheDownloadCarried) {
    Conditions sent;
    for (Condition c : oneOfEachKind()) {
        c.Format = 0; // the valve's format: its value goes along
        c.Valeur = c.Jour == 2 ? 1 : c.Valeur;
        c.Temporisation = c.Jour == JourPeriode ? 32000 : c.Temporisation;
        sent.Add(c);
    }
    ASSERT_TRUE(download(sent).resultat);
    outputFormats = {{3, 0}};

    const ConfigDocument config(configPath());
    const ProgrammeLu read = LitEtSauveProgramme(device, config, message(), formats());
    ASSERT_EQ(read.fin, Fin::MarqueDeFin);
    ASSERT_TRUE(read.conditions);
    ASSERT_EQ(read.conditions->Count(), sent.Count());

    Conditions stored;
    LitConditions(config, stored);
    ASSERT_EQ(stored.Count(), sent.Count());

    for (int n = 1; n <= sent.Count(); ++n) {
        SCOPED_TRACE(n);
        const Condition& s = *sent.Item(n);
        // What the download carries; comment, offset and logic stay behind.
        Condition expected;
        expected.Nom = kValveName + QStringLiteral(" 1-") + QString::number(n);
        expected.rang = static_cast<std::int16_t>(n);
        expected.sortie = s.sortie;
        expected.Valeur = s.Valeur;
        expected.Temporisation = s.Temporisation;
        expected.Jour = s.Jour;
        expected.Heure = s.Heure;
        expected.Minute = s.Minute;
        expected.Seconde = s.Seconde;
        expected.PlageFinJour = s.PlageFinJour;
        expected.PlageFinHeure = s.PlageFinHeure;
        expected.PlageFinMinute = s.PlageFinMinute;
        expected.PlageFinSeconde = s.PlageFinSeconde;
        EXPECT_EQ(test::storedFields(*read.conditions->Item(n)), test::storedFields(expected));
        EXPECT_EQ(test::storedFields(*stored.Item(n)), test::storedFields(expected));
    }
}

// ---------------------------------------------------------------- upload

TEST_F(ProgrammeTransfer, EmptyImageGivesNothingAndLeavesConfigXmlAlone) {
    const ConfigDocument config(configPath());
    Conditions stored;
    stored.Add(line(2, 0, 1, 5));
    SauveConditions(config, stored);
    const QByteArray before = contents(configPath());

    writeImage(kEnd + header());
    const ProgrammeLu read = LitEtSauveProgramme(device, config, message(), formats());
    EXPECT_EQ(read.fin, Fin::ImageVide);
    EXPECT_FALSE(read.conditions);
    EXPECT_EQ(contents(configPath()), before);
    EXPECT_EQ(gate.attempts(), 1);
}

TEST_F(ProgrammeTransfer, PlainLineTakesItsValueDelayAndOutputName) {
    outputFormats = {{3, 0}, {4, 7}};
    writeImage(header() + std::vector<int>{4, 0, 0, 0xFE, 0x7F, 9, 9, 9, 9, 0, 0, 0x38, 0xFF} +
               kEnd);
    const ProgrammeLu read = upload();
    ASSERT_EQ(read.fin, Fin::MarqueDeFin);
    ASSERT_EQ(read.conditions->Count(), 2);
    const Condition& first = *read.conditions->Item(1);
    EXPECT_EQ(first.Nom, QStringLiteral("Bistable valve 1-1"));
    EXPECT_EQ(first.rang, 1);
    EXPECT_EQ(first.sortie, 3);
    EXPECT_EQ(first.Format, 0);
    EXPECT_EQ(first.Valeur, 1.0);
    EXPECT_EQ(first.Offset, 0.0);
    EXPECT_EQ(first.Temporisation, 300);
    EXPECT_EQ(first.Jour, 0);
    const Condition& second = *read.conditions->Item(2);
    EXPECT_EQ(second.Nom, QStringLiteral("Bistable valve 2-2"));
    EXPECT_EQ(second.rang, 2);
    EXPECT_EQ(second.Format, 7);
    EXPECT_EQ(second.Valeur, 32766.0);
    EXPECT_EQ(second.Temporisation, -200); // signed word
}

TEST_F(ProgrammeTransfer, OutputWithoutARowOrWithAnOversizedFormatKeepsFormat0) {
    outputFormats = {{4, 1}, {5, 40000}};
    writeImage(header() + std::vector<int>{5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0} + kEnd);
    const ProgrammeLu read = upload();
    ASSERT_EQ(read.conditions->Count(), 2);
    EXPECT_EQ(read.conditions->Item(1)->Format, 0);
    EXPECT_EQ(read.conditions->Item(2)->Format, 0);
}

TEST_F(ProgrammeTransfer, CommentPrefixIsReadAsLatin1AndSkipped) {
    struct Case {
        std::vector<int> prefix;
        QString comment;
    };
    const Case cases[] = {
        {{253, 0}, QString()},
        {{253, 5, 'G', 'a', 'r', 0xE9, '!'}, QStringLiteral("Gar\u00E9!")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.comment.toStdString());
        const Condition read = single(c.prefix + header() + kEnd);
        EXPECT_EQ(read.Commentaire, c.comment);
        EXPECT_EQ(read.sortie, 3);
        EXPECT_EQ(read.Valeur, 1.0);
        EXPECT_EQ(read.Temporisation, 300);
    }
}

// Bit 7 of byte 4 makes the copy form: input number from byte 3, value and
// offset from the words at 5 and 7. A plain value below 0 falls into it too.
TEST_F(ProgrammeTransfer, CopyFormTakesTheInputValueAndOffset) {
    struct Case {
        int byte3;
        int byte4;
        double format;
        int recopie;
    };
    for (const Case& c : {Case{0x85, 0x80, 0, 5}, Case{0x85, 0x80, 2, 6}, Case{0x05, 0xFF, 0, 5},
                          Case{0x38, 0xFF, 1, 57}}) {
        SCOPED_TRACE(testing::Message() << c.byte3 << " " << c.byte4 << " format " << c.format);
        outputFormats = {{3, c.format}};
        const Condition read = single(
            std::vector<int>{3, 0, 0, c.byte3, c.byte4, 10, 0, 0xFE, 0xFF, 7, 7, 60, 0} + kEnd);
        EXPECT_EQ(read.RecopieEntree, c.recopie);
        EXPECT_EQ(read.Valeur, 10.0);
        EXPECT_EQ(read.Offset, -2.0);
        EXPECT_EQ(read.Temporisation, 60);
    }
}

TEST_F(ProgrammeTransfer, LogicTermsAreScaledFromPercentToTheInputsUnit) {
    struct Case {
        int index;
        int op;
        std::vector<int> values; // bytes 2..5
        double valeur1;
        double valeur2;
    };
    const Case cases[] = {
        {0, 4, {50, 0, 100, 0}, 12, 20},    // 4 to 20 mA
        {1, 2, {0, 0, 25, 0}, 4, 8},        // 4 to 20 mA
        {2, 1, {50, 0, 100, 0}, 5, 10},     // 0 to 10 V
        {3, 3, {5, 0, 0, 0}, 0.5, 0},       // 0 to 10 V
        {4, 7, {44, 1, 1, 2}, 300, 513},    // taken as read
        {7, 255, {0, 255, 0, 0}, 65280, 0}, // a whole unsigned word
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.index);
        const std::vector<int> term =
            std::vector<int>{c.index, c.op} + c.values + std::vector<int>{9, 9, 9, 9};
        const Condition read = single(header(1) + term + kEnd);
        EXPECT_EQ(read.Numero(c.index), c.index);
        EXPECT_EQ(read.Operateur(c.index), c.op);
        EXPECT_DOUBLE_EQ(*read.Valeur1(c.index), c.valeur1);
        EXPECT_DOUBLE_EQ(*read.Valeur2(c.index), c.valeur2);
        EXPECT_EQ(read.tempo(c.index), 0);
        EXPECT_EQ(read.Jour, 0);
        for (int other = 0; other < Condition::IndexedSize; ++other) {
            if (other != c.index) {
                EXPECT_EQ(read.Valeur1(other), 0.0) << other;
                EXPECT_EQ(read.Operateur(other), 0) << other;
            }
        }
    }
}

TEST_F(ProgrammeTransfer, TimeTermsSetTheDayOrThePeriod) {
    const Condition day =
        single(header(1) + std::vector<int>{9, 77, 4, 8, 15, 30, 1, 1, 1, 1} + kEnd);
    EXPECT_EQ(day.Jour, 4);
    EXPECT_EQ(day.Heure, 8);
    EXPECT_EQ(day.Minute, 15);
    EXPECT_EQ(day.Seconde, 30);
    EXPECT_EQ(day.PlageFinHeure, 0);

    const Condition periodic =
        single(header(1) + std::vector<int>{11, 77, 15, 4, 7, 45, 3, 1, 1, 1} + kEnd);
    EXPECT_EQ(periodic.Jour, JourPeriode);
    EXPECT_EQ(periodic.PlageFinMinute, 15); // day of the month
    EXPECT_EQ(periodic.PlageFinHeure, 4);   // month
    EXPECT_EQ(periodic.Heure, 7);
    EXPECT_EQ(periodic.Minute, 45);
    EXPECT_EQ(periodic.Seconde, 3);
    EXPECT_EQ(periodic.PlageFinSeconde, 0);
}

TEST_F(ProgrammeTransfer, RangeBlockEntriesOf9And5Bytes) {
    const std::vector<int> start = {9, 7, 6, 5, 4, 1, 1, 1, 1}; // any b but 0
    const std::vector<int> end = {9, 0, 18, 30, 2, 1, 1, 1, 1};
    const std::vector<int> other = {8, 1, 20, 20, 20};
    // A day term after the block shows where the block ended.
    const std::vector<int> term = {9, 0, 2, 23, 59, 58, 0, 0, 0, 0};

    const Condition both = single(header(0, 1) + start + end + kEnd);
    EXPECT_EQ(both.Jour, JourPlage);
    EXPECT_EQ(both.Heure, 6);
    EXPECT_EQ(both.Minute, 5);
    EXPECT_EQ(both.Seconde, 4);
    EXPECT_EQ(both.PlageFinJour, JourPlage);
    EXPECT_EQ(both.PlageFinHeure, 18);
    EXPECT_EQ(both.PlageFinMinute, 30);
    EXPECT_EQ(both.PlageFinSeconde, 2);

    const Condition shortFirst = single(header(1, 1) + other + end + term + kEnd);
    EXPECT_EQ(shortFirst.PlageFinJour, JourPlage);
    EXPECT_EQ(shortFirst.PlageFinHeure, 18);
    EXPECT_EQ(shortFirst.Heure, 23);
    EXPECT_EQ(shortFirst.Jour, 2);

    const Condition shortSecond = single(header(1, 0x03) + start + other + term + kEnd);
    EXPECT_EQ(shortSecond.Jour, 2); // the term comes after the range
    EXPECT_EQ(shortSecond.Heure, 23);
    EXPECT_EQ(shortSecond.PlageFinJour, 0);

    // Without flag bit 0 the same bytes are terms.
    const Condition noFlag = single(header(1, 0xFE) + term + kEnd);
    EXPECT_EQ(noFlag.Jour, 2);
}

TEST_F(ProgrammeTransfer, TermWithNoPlaceInTheLineIsSkippedAndTheNextOneRead) {
    for (int index : {10, 12, 200}) {
        SCOPED_TRACE(index);
        const std::vector<int> bad = {index, 5, 50, 0, 100, 0, 0, 0, 0, 0};
        const std::vector<int> day = {9, 0, 3, 10, 20, 30, 0, 0, 0, 0};
        const Condition read = single(header(2) + bad + day + kEnd);
        EXPECT_EQ(read.Jour, 3);
        EXPECT_EQ(read.Heure, 10);
        EXPECT_EQ(read.Seconde, 30);
        for (int i = 0; i < Condition::IndexedSize; ++i)
            EXPECT_EQ(read.Valeur1(i), 0.0) << i;
    }
}

// The ninth element exists for the reader, but a line keeps only eight.
TEST_F(ProgrammeTransfer, TermIndex8IsReadButNotKeptInTheLine) {
    const Condition read = single(header(2) + std::vector<int>{8, 5, 50, 0, 100, 0, 0, 0, 0, 0} +
                                  std::vector<int>{9, 0, 3, 10, 20, 30, 0, 0, 0, 0} + kEnd);
    EXPECT_EQ(read.Valeur1(8), 0.0);
    EXPECT_EQ(read.Jour, 3);
}

TEST_F(ProgrammeTransfer, DeviceDyingMidImageEndsTheReadAndStoresNothing) {
    const ConfigDocument config(configPath());
    const QByteArray before = contents(configPath());
    writeImage(header() + header(1) + std::vector<int>{9, 0, 3, 10, 20, 30, 0, 0, 0, 0} + kEnd);
    // 8 exchanges read a plain line: head, T, flags, byte 4 and two words.
    struct Case {
        int answered;
        int linesKept;
        bool collection;
    };
    for (const Case& c : {Case{0, 0, false}, Case{1, 0, true}, Case{7, 0, true}, Case{8, 1, true},
                          Case{14, 1, true}}) {
        SCOPED_TRACE(c.answered);
        revive();
        const int start = gate.attempts();
        gate.dieAfter(c.answered);
        const ProgrammeLu read = LitEtSauveProgramme(device, config, message(), formats());
        EXPECT_EQ(read.fin, Fin::TimeOut);
        EXPECT_FALSE(read.complet());
        ASSERT_EQ(read.conditions.has_value(), c.collection);
        if (c.collection) {
            EXPECT_EQ(read.conditions->Count(), c.linesKept);
        }
        // No read after the first unanswered one; a word's second byte is
        // the one exception, as LitEEpromMot reads both.
        EXPECT_LE(gate.attempts() - start, c.answered + 2 * FrameLink::kAttempts);
        EXPECT_EQ(contents(configPath()), before);
    }
}

TEST_F(ProgrammeTransfer, ImageWithoutEndMarkStopsAtTheEndOfMemory) {
    struct Case {
        const char* what;
        int fill;
    };
    // Zeros: 13-byte lines without terms. Ones: a range block of two short
    // entries and one logic term per line. 0x90: copy-form lines with 144
    // terms, which overrun the memory at once.
    for (const Case& c : {Case{"zeros", 0}, Case{"ones", 1}, Case{"0x90", 0x90}}) {
        SCOPED_TRACE(c.what);
        const ConfigDocument config(configPath());
        const QByteArray before = contents(configPath());
        writeImage(std::vector<int>(512 - 48, c.fill));
        bus.clearTrace();
        const int start = gate.attempts();

        const ProgrammeLu read = LitEtSauveProgramme(device, config, message(), formats());
        EXPECT_EQ(read.fin, Fin::FinMemoire);
        EXPECT_TRUE(read.conditions);
        EXPECT_EQ(contents(configPath()), before);
        EXPECT_LT(gate.attempts() - start, 2 * 512);
        for (const std::vector<int>& sent : frames()) {
            ASSERT_EQ(sent[0], 0xFE);
            EXPECT_LE(sent[1] + 256 * sent[2], 511);
        }
    }
}

} // namespace
} // namespace qv
