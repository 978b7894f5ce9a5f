#include "ProgrammeLines.h"
#include "ProgrammeTestSupport.h"
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/ProgrammeCheck.h"
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
using Image = std::vector<int>;

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

// A frame as the test spells it: the named leading bytes, zeros up to the
// 14 bytes in front of the check value.
Image frame(std::initializer_list<int> leading) {
    Image bytes(leading);
    bytes.resize(14, 0);
    return bytes;
}

Condition line(std::int16_t jour, std::int16_t format, double valeur, std::int16_t temporisation,
               std::int16_t heure = 0, std::int16_t minute = 0, std::int16_t seconde = 0) {
    Condition c = test::programmeLine(jour, heure, minute, seconde, temporisation);
    c.Format = format;
    c.Valeur = valeur;
    return c;
}

// One line of each kind: no time, a week day, a range, and a periodic line
// every 3 days from 15 April on.
Conditions oneOfEachKind() {
    Conditions conditions;
    Condition noTime = line(0, 0, 7, 300);
    noTime.Nom = QStringLiteral("Bistable valve-0");
    noTime.Commentaire = QStringLiteral("stays on the PC");
    noTime.setOperateur(0, 4);
    noTime.setValeur1(0, 12.0);
    noTime.Offset = 2.5;
    conditions.Add(noTime);
    conditions.Add(line(2, 1, 1, 10, 8, 15, 30));
    Condition range = line(JourPlage, 0, 12, 60, 6);
    range.PlageFinJour = JourPlage;
    range.PlageFinHeure = 18;
    range.PlageFinMinute = 30;
    conditions.Add(range);
    Condition periodic = line(JourPeriode, 0, 0, 258, 7, 45, 3);
    periodic.PlageFinHeure = 4;
    periodic.PlageFinMinute = 15;
    conditions.Add(periodic);
    return conditions;
}

Image operator+(Image a, const Image& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A plain header: valve 3, word value 1, delay 300.
Image header(int terms = 0, int flags = 0) {
    return {3, terms, flags, 1, 0, 0, 0, 0, 0, 0, 0, 44, 1};
}
const Image kEnd = {255};

// The line that header() reads as, alone in the image.
Condition plain() {
    Condition c = line(0, 0, 1, 300);
    c.Nom = kValveName + QStringLiteral(" 1-1");
    c.rang = 1;
    return c;
}
const Image kDayTerm = {9, 0, 3, 10, 20, 30, 0, 0, 0, 0};

class ProgrammeTransfer : public ::testing::Test {
protected:
    SimulatedBus bus;
    GateBus gate{bus};
    test::RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{gate, dialogs, state};
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
    std::int32_t id = 0;
    test::ScratchAppFolder folder;
    std::map<int, double> outputFormats; // ListeSorties: position -> item data

    void SetUp() override {
        link.setPause([](int) {});
        bus.setSleep([](int) {});
        id = bus.addDevice(SimDeviceConfig{});
        state.UsbID = id;
    }

    QString configPath() const { return folder.configPath(); }

    // A fresh start for the next case of a table: the device answers again
    // and nothing of the last case is left in the flags, boxes and trace.
    void revive() {
        gate.revive();
        state.TimeOut = false;
        dialogs.clear();
        bus.clearTrace();
    }

    // Sent on 7 March 2024, a Thursday, at 14:03:05 on 5 March.
    EnvoiResultat download(const Conditions& conditions, std::int16_t etatDefaut = 1) {
        return Envoi_Conditions(device, conditions, etatDefaut, kQuestion, QDate(2024, 3, 7),
                                QDateTime(QDate(2024, 3, 5), QTime(14, 3, 5)));
    }

    MessageLookup message() const {
        return [](const QString& key) {
            return key == QStringLiteral("Electro Vanne Bist.") ? kValveName : QStringLiteral("?");
        };
    }
    OutputFormatLookup formats() const {
        return [this](int position) -> std::optional<double> {
            const auto found = outputFormats.find(position);
            return found == outputFormats.end() ? std::nullopt : std::optional(found->second);
        };
    }
    ProgrammeLu upload() { return LitProgramme(device, message(), formats()); }
    ProgrammeLu uploadAndSave(const ConfigDocument& config) {
        return LitEtSauveProgramme(device, config, message(), formats());
    }

    // The frames the controller received, without their check value.
    std::vector<Image> frames() const {
        std::vector<Image> sent;
        for (const QString& traced : bus.traceLines()) {
            const auto arrow = traced.indexOf(QStringLiteral(" > "));
            if (arrow < 0)
                continue;
            const QByteArray bytes = QByteArray::fromHex(traced.mid(arrow + 3).toLatin1());
            Image values;
            for (int i = 0; i < 14 && i < bytes.size(); ++i)
                values.push_back(static_cast<unsigned char>(bytes[i]));
            sent.push_back(values);
        }
        return sent;
    }

    Image image(int from, int to) const {
        Image bytes;
        for (int a = from; a < to; ++a)
            bytes.push_back(bus.device(id)->eeprom(a));
        return bytes;
    }

    void writeImage(const Image& bytes) {
        bus.modify(id, [&](SimDevice& d) {
            for (size_t i = 0; i < bytes.size(); ++i)
                d.setEeprom(48 + static_cast<int>(i), bytes[i]);
        });
    }

    // The one line of a hand-made image, or a failure.
    Condition single(const Image& bytes) {
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

const Image kClockFrame = frame({0x01, 4, 14, 3, 5, 5, 3, 24, 255});

// ---------------------------------------------------------------- download

TEST_F(ProgrammeTransfer, OneLineOfEachKindGoesAsTheFramesAndImageOfTheProtocol) {
    const EnvoiResultat result = download(oneOfEachKind(), 1);
    EXPECT_TRUE(result.resultat);
    EXPECT_FALSE(result.cancelled);

    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, kQuestion);
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::OkCancel);

    const std::vector<Image> expected = {
        kClockFrame, // a programme follows
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
    const Image laidOut = {// line 1 at 48: no terms, no range; delay low byte first
                           3, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 44, 1,
                           // line 2 at 61: one day term
                           3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 9, 0, 2, 8, 15, 30, 0, 0, 0, 0,
                           // line 3 at 84: range flag, start and end entries
                           3, 0, 1, 12, 0, 0, 0, 0, 0, 0, 0, 60, 0, 9, 1, 6, 0, 0, 0, 0, 0, 0, 9, 0,
                           18, 30, 0, 0, 0, 0, 0,
                           // line 4 at 115: one periodic term
                           3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 1, 11, 0, 15, 4, 7, 45, 3, 0, 0, 0,
                           // end mark at 138
                           255};
    EXPECT_EQ(image(48, 139), laidOut);
}

TEST_F(ProgrammeTransfer, CancelOrAnEarlierTimeOutSendsNothing) {
    dialogs.answerNext(MsgBox::AnswerCancel);
    const EnvoiResultat result = download(oneOfEachKind());
    EXPECT_FALSE(result.resultat);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(dialogs.boxes().size(), 1u);

    // A time-out left from before stops right after the question.
    state.TimeOut = true;
    EXPECT_FALSE(download(oneOfEachKind()).resultat);
    EXPECT_EQ(dialogs.boxes().size(), 2u);
    EXPECT_EQ(gate.attempts(), 0);
    EXPECT_TRUE(bus.traceLines().isEmpty());
}

// The device goes dead after a number of answered exchanges; the download
// stops on the first unanswered frame and sends nothing after it.
TEST_F(ProgrammeTransfer, DeadDeviceStopsTheDownloadAtTheFirstFailure) {
    for (int answered : {0, 1, 3, 8}) {
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

Condition& at(Conditions& lines) {
    return *lines.Item(2);
}

// A field that does not fit its frame is found before the question: the
// operator is told which line and field, and not a frame goes.
TEST_F(ProgrammeTransfer, ProgrammeOutOfRangeIsRefusedBeforeAnyFrame) {
    struct Case {
        void (*spoil)(Conditions&);
        const char* says;
    };
    const Case cases[] = {
        {[](Conditions& l) { at(l).sortie = 256; }, "line 2, field SORTIE: 256"},
        {[](Conditions& l) { at(l).Jour = -1; }, "line 2, field JOUR: -1"},
        {[](Conditions& l) { at(l).Jour = JourPlage, at(l).PlageFinHeure = 256; },
         "line 2, field HEUREFIN: 256"},
        {[](Conditions& l) { at(l).Valeur = -1e10; }, "line 2, field VALEUR: -10000000000"},
        {[](Conditions& l) {
             while (l.Count() <= kMaxLignesEnvoi)
                 l.Add(line(0, 0, 1, 5));
         },
         "it has 257 lines, the controller takes at most 256"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.says);
        revive();
        const int before = gate.attempts();
        Conditions conditions;
        conditions.Add(line(0, 0, 1, 5));
        conditions.Add(line(2, 0, 1, 5));
        conditions.Add(line(0, 0, 1, 5));
        c.spoil(conditions);
        const EnvoiResultat result = download(conditions);
        EXPECT_FALSE(result.resultat);
        EXPECT_FALSE(result.cancelled);
        ASSERT_TRUE(result.refus);
        EXPECT_EQ(gate.attempts(), before);
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        EXPECT_TRUE(dialogs.boxes()[0].text.contains(QString::fromUtf8(c.says)))
            << dialogs.boxes()[0].text.toStdString();
    }
    // The largest programme that the line byte can number passes.
    Conditions largest;
    while (largest.Count() < kMaxLignesEnvoi)
        largest.Add(line(0, 0, 1, 5));
    EXPECT_FALSE(VerifieProgramme(largest, 1).has_value());
    // The default state of the output goes in a byte too.
    revive();
    EXPECT_EQ(download(Conditions{}, -1).refus->kind, ProgrammeFault::Kind::DefaultState);
    EXPECT_EQ(gate.attempts(), 0);
}

// ---------------------------------------------------------------- upload

// Jour, Heure, Minute, Seconde, then the four PlageFin fields.
using Times = std::array<std::int16_t, 8>;

TEST_F(ProgrammeTransfer, TimeTermsAndRangeBlocksSetTheTimeFieldsOnly) {
    const Image start = {9, 7, 6, 5, 4, 1, 1, 1, 1}; // any b but 0
    const Image end = {9, 0, 18, 30, 2, 1, 1, 1, 1};
    const Image other = {8, 1, 20, 20, 20};
    // A day term after a range block shows where the block ended.
    const Image term = {9, 0, 2, 23, 59, 58, 0, 0, 0, 0};
    const Times afterTerm = {2, 23, 59, 58, 0, 0, 0, 0};
    const Image unplaced = {5, 50, 0, 100, 0, 0, 0, 0, 0}; // a logic term after its index
    // A periodic term holds the day of the month, then the month, then the
    // time. Without flag bit 0 a range block's bytes are terms. The ninth
    // element exists for the reader but a line keeps eight; a term whose
    // index has no place at all is skipped.
    const std::pair<Image, Times> cases[] = {
        {header(1) + Image{9, 77, 4, 8, 15, 30, 1, 1, 1, 1}, {4, 8, 15, 30, 0, 0, 0, 0}},
        {header(1) + Image{11, 77, 15, 4, 7, 45, 3, 1, 1, 1}, {12, 7, 45, 3, 0, 4, 15, 0}},
        {header(0, 1) + start + end, {11, 6, 5, 4, 11, 18, 30, 2}},
        {header(1, 1) + other + end + term, {2, 23, 59, 58, 11, 18, 30, 2}},
        {header(1, 3) + start + other + term, afterTerm},
        {header(1, 0xFE) + term, afterTerm},
        {header(2) + Image{8} + unplaced + term, afterTerm},
        {header(2) + Image{10} + unplaced + term, afterTerm},
        {header(2) + Image{200} + unplaced + term, afterTerm}};
    for (const auto& [bytes, times] : cases) {
        Condition expected = plain();
        std::tie(expected.Jour, expected.Heure, expected.Minute, expected.Seconde,
                 expected.PlageFinJour, expected.PlageFinHeure, expected.PlageFinMinute,
                 expected.PlageFinSeconde) = std::tuple_cat(times);
        EXPECT_EQ(test::storedFields(single(bytes + kEnd)), test::storedFields(expected));
    }

    // A comment prefix is read in code page 1252 and skipped.
    EXPECT_EQ(test::storedFields(single(Image{253, 0} + header() + kEnd)),
              test::storedFields(plain()));
    const std::pair<Image, QString> comments[] = {
        {{'G', 'a', 'r', 0xE9, '!'}, QStringLiteral("Gar\u00E9!")},
        {{0x80, ' ', 'l', 0x92, 'a', 'n'}, QStringLiteral("\u20AC l\u2019an")},
        {{0x81, 0x8D, 0xFF}, QStringLiteral("\u0081\u008D\u00FF")}, // undefined: kept as is
        // What XML cannot carry; tab, line feed and carriage return it can.
        {{'a', 0x01, 0x0B, 0x1F, '\t', '\n', '\r', 0, 0}, QStringLiteral("a???\t\n\r??")},
    };
    for (const auto& [bytes, text] : comments) {
        Image record{253, static_cast<int>(bytes.size())};
        record = record + bytes;
        EXPECT_EQ(single(record + header() + kEnd).Commentaire, text);
    }
}

// Bit 7 of byte 4 makes the copy form: the input from byte 3, 6 when the
// output's format is not 0. A logic term of input 0 or 2 is scaled from
// percent to 4-20 mA or 0-10 V.
TEST_F(ProgrammeTransfer, CopyFormAndScaledLogicTerms) {
    for (const auto& [format, recopie] : {std::pair{0, 5}, {2, 6}}) {
        outputFormats = {{3, format}};
        const Condition read =
            single(Image{3, 0, 0, 0x85, 0x80, 10, 0, 0xFE, 0xFF, 7, 7, 60, 0} + kEnd);
        EXPECT_EQ(
            test::storedFields(read)[1],
            QStringLiteral("Valeur=10 Temporisation=60 Offset=-2 RecopieEntree=%1").arg(recopie));
    }
    for (const auto& [index, valeur1, valeur2] : {std::tuple{0, 12.0, 20.0}, {2, 5.0, 10.0}}) {
        const Condition read =
            single(header(1) + Image{index, 4, 50, 0, 100, 0, 9, 9, 9, 9} + kEnd);
        EXPECT_EQ(read.Valeur1(index), valeur1) << index;
        EXPECT_EQ(read.Valeur2(index), valeur2) << index;
    }
}

// An incomplete read stores nothing in config.xml and reads no address past
// the memory. A dead device stops the read at once (a word's second byte
// is the one exception, as LitEEpromMot reads both): 8 exchanges read a plain
// line. Without an end mark, zeros are 13-byte lines without terms, ones a
// range block of two short entries and one logic term per line, and 0x90
// copy-form lines with 144 terms, which overrun the memory at once.
TEST_F(ProgrammeTransfer, IncompleteUploadStoresNothing) {
    struct Case {
        Image image;
        int answered; // exchanges before the device dies, -1: it never does
        Fin fin;
        int lines; // -1: no collection
    };
    const Image twoLines = header() + header(1) + kDayTerm + kEnd;
    const Case cases[] = {{kEnd + header(), -1, Fin::ImageVide, -1},
                          {twoLines, 0, Fin::TimeOut, -1},
                          {twoLines, 1, Fin::TimeOut, 0},
                          {twoLines, 7, Fin::TimeOut, 0},
                          {twoLines, 8, Fin::TimeOut, 1},
                          {twoLines, 14, Fin::TimeOut, 1},
                          {Image(512 - 48, 0), -1, Fin::FinMemoire, 35},
                          {Image(512 - 48, 1), -1, Fin::FinMemoire, 14},
                          {Image(512 - 48, 0x90), -1, Fin::FinMemoire, 0}};
    const ConfigDocument config(configPath());
    Conditions stored;
    stored.Add(line(2, 0, 1, 5));
    SauveConditions(config, stored);
    const QByteArray before = test::readFile(configPath());
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.image.size() << " bytes, " << c.answered);
        revive();
        writeImage(c.image);
        const int start = gate.attempts();
        if (c.answered >= 0)
            gate.dieAfter(c.answered);
        const ProgrammeLu read = uploadAndSave(config);
        EXPECT_EQ(read.fin, c.fin);
        EXPECT_EQ(read.conditions ? read.conditions->Count() : -1, c.lines);
        EXPECT_EQ(test::readFile(configPath()), before);
        const int attempts = gate.attempts() - start;
        EXPECT_LE(attempts, c.answered >= 0 ? c.answered + 2 * FrameLink::kAttempts : 2 * 512);
        EXPECT_TRUE(c.fin != Fin::ImageVide || attempts == 1) << "an empty image takes one read";
        for (const Image& sent : frames())
            EXPECT_LE(sent[1] + 256 * sent[2], 511);
    }
}

} // namespace
} // namespace qv
