#include "ProgrammeUpload.h"

#include "config/ConfigDocument.h"
#include "config/Windows1252.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"
#include "programme/ProgrammeStore.h"

#include <QByteArray>

namespace qv {

namespace {

constexpr int kEndMark = 255;
constexpr int kCommentMark = 253;
constexpr int kHeaderLength = 13;
constexpr int kTermLength = 10;
constexpr int kRangeEntryLength = 9;
constexpr int kOtherEntryLength = 5;
constexpr int kRangeEntries = 2;
constexpr int kTermDayTime = 9;
constexpr int kTermPeriod = 11;
constexpr int kLastAddress = Address::MemorySize - 1;

// Thrown by the reader to abandon the image; never leaves this file.
struct Stop {
    ProgrammeLu::Fin fin;
    int address;
};

// Plain EEPROM reads that give up instead of returning a failed read's 0,
// which the decoder would take for data.
class ImageReader {
public:
    explicit ImageReader(Device& device) : device_(device) {}

    int byte(int address) {
        within(address, address);
        const int value = device_.LitEEprom(address);
        answered(address);
        return value;
    }

    int word(int address) {
        within(address, address + 1);
        const int value = device_.LitEEpromMot(address);
        answered(address);
        return value;
    }

private:
    static void within(int address, int lastAddress) {
        if (lastAddress > kLastAddress)
            throw Stop{ProgrammeLu::Fin::FinMemoire, address};
    }
    // A reply that failed its check value three times comes back as zeros
    // too: taken as data, it would turn into lines the device does not hold.
    void answered(int address) const {
        if (device_.state().TimeOut)
            throw Stop{ProgrammeLu::Fin::TimeOut, address};
        if (device_.state().CRCError)
            throw Stop{ProgrammeLu::Fin::ErreurCRC, address};
    }

    Device& device_;
};

// The device keeps analogue thresholds in percent of the input's range; a
// line holds them in the input's own unit.
double scaled(int index, double percent) {
    switch (index) {
    case 0: // 4 to 20 mA inputs
    case 1:
        return percent * 16 / 100 + 4;
    case 2: // 0 to 10 V inputs
    case 3:
        return percent * 10 / 100;
    default:
        return percent;
    }
}

// One entry of the range block at `p`; returns its length.
int readRangeEntry(ImageReader& image, int p, Condition& c) {
    if (image.byte(p) != kTermDayTime)
        return kOtherEntryLength;
    if (image.byte(p + 1) != 0) {
        c.Heure = static_cast<std::int16_t>(image.byte(p + 2));
        c.Minute = static_cast<std::int16_t>(image.byte(p + 3));
        c.Seconde = static_cast<std::int16_t>(image.byte(p + 4));
        c.Jour = JourPlage;
    } else {
        c.PlageFinHeure = static_cast<std::int16_t>(image.byte(p + 2));
        c.PlageFinMinute = static_cast<std::int16_t>(image.byte(p + 3));
        c.PlageFinSeconde = static_cast<std::int16_t>(image.byte(p + 4));
        c.PlageFinJour = JourPlage;
    }
    return kRangeEntryLength;
}

void readTerm(ImageReader& image, int p, Condition& c) {
    const int a = image.byte(p);
    const auto field = [&](int offset) {
        return static_cast<std::int16_t>(image.byte(p + offset));
    };
    if (a == kTermDayTime) {
        c.Jour = field(2);
        c.Heure = field(3);
        c.Minute = field(4);
        c.Seconde = field(5);
        return;
    }
    if (a == kTermPeriod) {
        // Same order as sub-command 11 of the download.
        c.Jour = JourPeriode;
        c.PlageFinMinute = field(2);
        c.PlageFinHeure = field(3);
        c.Heure = field(4);
        c.Minute = field(5);
        c.Seconde = field(6);
        return;
    }
    // A logic sub-condition, indexed by its first byte. An index with no
    // place in the line comes from a damaged image: the setters refuse it,
    // and the read goes on at the next term.
    c.setOperateur(a, static_cast<std::uint8_t>(image.byte(p + 1)));
    c.setNumero(a, static_cast<std::uint8_t>(a));
    const double valeur1 = image.byte(p + 2) + 256.0 * image.byte(p + 3);
    const double valeur2 = image.byte(p + 4) + 256.0 * image.byte(p + 5);
    c.setValeur1(a, scaled(a, valeur1));
    c.setValeur2(a, scaled(a, valeur2));
}

// The line whose record starts at `p` with the byte `head` already read;
// `p` ends on the byte after it.
Condition readLine(ImageReader& image, int& p, int head, int rang, const MessageLookup& message,
                   const OutputFormatLookup& outputFormat) {
    Condition c;
    if (head == kCommentMark) {
        const int length = image.byte(p + 1);
        QByteArray text;
        for (int i = 0; i < length; ++i)
            text.append(static_cast<char>(image.byte(p + 2 + i)));
        // A control byte (NUL padding, say) would make config.xml unsavable
        // and stop the rest of the full read; the line is kept without it.
        c.Commentaire = xmlStorable(decodeWindows1252(text));
        p += length + 2;
        head = image.byte(p);
    }
    c.sortie = static_cast<std::int16_t>(head);
    c.Nom = message(QStringLiteral("Electro Vanne Bist.")) + QLatin1Char(' ') +
            QString::number(c.sortie - 2) + QLatin1Char('-') + QString::number(rang);
    if (const std::optional<double> format = outputFormat(c.sortie)) {
        try {
            c.Format = toInt16Checked(*format);
        } catch (const OverflowError&) {
            // A list value that no line can hold leaves the format at 0.
        }
    }
    c.rang = static_cast<std::int16_t>(rang);

    const int terms = image.byte(p + 1);
    const int flags = image.byte(p + 2);
    // Bit 7 is tested before either word is read, so a plain Valeur with a
    // high byte of 128 or more (a negative one) reads as the copy form. The
    // firmware's format leaves no way around it.
    if (image.byte(p + 4) & 0x80) {
        c.RecopieEntree = static_cast<std::int16_t>((image.byte(p + 3) & 0x7F) + (c.Format != 0));
        c.Valeur = image.word(p + 5);
        c.Offset = image.word(p + 7);
    } else {
        c.Valeur = image.word(p + 3);
        c.Offset = 0.0;
    }
    c.Temporisation = static_cast<std::int16_t>(image.word(p + 11));
    p += kHeaderLength;

    if (flags & 0x01) {
        for (int entry = 0; entry < kRangeEntries; ++entry)
            p += readRangeEntry(image, p, c);
    }
    for (int term = 0; term < terms; ++term) {
        readTerm(image, p, c);
        p += kTermLength;
    }
    return c;
}

} // namespace

ProgrammeLu LitProgramme(Device& device, const MessageLookup& message,
                         const OutputFormatLookup& outputFormat) {
    ProgrammeLu result;
    ImageReader image(device);
    int p = Address::ProgrammeImage;
    try {
        int head = image.byte(p);
        if (head == kEndMark) {
            result.fin = ProgrammeLu::Fin::ImageVide;
            return result;
        }
        result.conditions.emplace();
        for (int rang = 1; head != kEndMark; ++rang) {
            result.conditions->Add(readLine(image, p, head, rang, message, outputFormat));
            head = image.byte(p);
        }
        result.fin = ProgrammeLu::Fin::MarqueDeFin;
    } catch (const Stop& stop) {
        result.fin = stop.fin;
        result.adresseEchec = stop.address;
    }
    return result;
}

ProgrammeLu LitEtSauveProgramme(Device& device, const ConfigDocument& config,
                                const MessageLookup& message,
                                const OutputFormatLookup& outputFormat) {
    ProgrammeLu result = LitProgramme(device, message, outputFormat);
    if (result.complet() && result.conditions)
        SauveConditions(config, *result.conditions);
    return result;
}

} // namespace qv
